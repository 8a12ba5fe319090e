#pragma once

#include <QDomNode>
#include <QString>

// The XML text of a node as the configurations file holds it: no declaration, no
// indentation, no line ends between elements, and the attributes of every element in a
// fixed order: the order in which the configuration's owners write them, then the rest
// by name. The DOM keeps attributes in a hash whose order changes from one run of the
// program to the next; a fixed order makes an unchanged configuration produce the same
// text on every run, so that saving it at exit finds nothing to write and leaves no new
// dated copy.
QString xmlText(const QDomNode &node);
