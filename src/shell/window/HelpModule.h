#pragma once

#include <QHash>
#include <QString>
#include <QUrl>

#include <functional>

// Shows help topics. The map file "corvane-monitor.Help.Map" beside the executable
// names the page of each context number, one "NUMBER=page" line each (comments start
// with '#'); pages are HTML files next to the map and open in the desktop's browser.
// The map is read on the first request and kept for the rest of the run.
class HelpModule
{
public:
    static constexpr int kContents = 1;
    static constexpr int kGettingStarted = 2;

    // Opens a page; false when the desktop could not.
    using Opener = std::function<bool(const QUrl &)>;

    // mapFile: the map's full path (empty when none was found). Without an opener the
    // desktop's browser is used.
    explicit HelpModule(QString mapFile, Opener opener = {});

    static QString mapFileName();

    // Shows the page of a context number; false when the desktop could not open it (no
    // browser, or none allowed). Fails (passing the failure on) when the map cannot be
    // read, has no such number or the page is missing.
    bool ShowHelp(int contextId);

    // The page of a context number, as a file URL.
    QUrl topicUrl(int contextId);

private:
    void readMap();

    QString m_mapFile;
    Opener m_opener;
    bool m_mapRead = false;
    QHash<int, QString> m_pages;
};
