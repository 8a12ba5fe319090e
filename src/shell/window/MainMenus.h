#pragma once

class QAction;
class QMainWindow;
class QMenu;
class qlxLanguage;

// The main window's menus: File, Configuration and Help in the menu bar, and the tray's
// pop-up menu, which the menu bar does not show. Every item carries its name as object
// name and a language token as caption.
struct MainMenus
{
    QMenu *mnuFile = nullptr;
    QAction *mnuCloseWindow = nullptr;
    QAction *mnuShutDown = nullptr;

    QMenu *mnuConfiguration = nullptr;
    QAction *mnuStartStop = nullptr;
    QAction *mnuAdd = nullptr;
    QAction *mnuRemove = nullptr;
    QAction *mnuSettings = nullptr;
    QAction *mnuDataLogging = nullptr;
    QAction *mnuSPCSampling = nullptr;
    QAction *mnuControlChart = nullptr;

    QMenu *mnuHelp = nullptr;
    QAction *mnuContents = nullptr;
    QAction *mnuGettingStarted = nullptr;
    QAction *mnuAboutApp = nullptr;
    QAction *mnuAboutDB = nullptr;

    QMenu *mnuPopup = nullptr;
    QAction *mnuOpenWindow = nullptr;
    QAction *mnuViewErrorLog = nullptr;
    QAction *mnuShutDown2 = nullptr;

    // Creates the menus in the window's menu bar and the pop-up menu owned by window.
    void build(QMainWindow *window);
    void translateCaptions(const qlxLanguage &language);
    // The Start/Stop item names what it will do for the selected configuration.
    void showStartStop(const qlxLanguage &language, bool collecting);
};
