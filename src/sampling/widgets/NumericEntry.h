#pragma once

#include <QObject>
#include <QStringView>

// The number fields of the sampling dialogs (the sampling interval, the subgroup size,
// a server's port) take digits only from the keyboard; what they hold is read as the
// number its text starts with.
namespace NumericEntry {

// The key filter of a number field: a key code below 32 (Backspace, Enter, the control
// keys of copy and paste) or Delete (127) passes unchanged, a digit passes, and every
// other key gives 0, which discards it: "~" in a period would be read as no period.
int EvaluateNumericKey(int keyCode);

// The number a text starts with, after leading blanks: an optional sign, digits with at
// most one decimal point, and an optional exponent. What follows is ignored and a text
// without a number gives 0 ("12 s" is 12, "" and "~" are 0).
double numericValue(QStringView text);

// The nearest 32-bit integer, halves going to the even one. A value outside the 32-bit
// range (or not a number) throws an overflow error with source as its source.
qint32 roundToInt32(double value, const char *source);

} // namespace NumericEntry

// Applies EvaluateNumericKey to the key presses of the line edits it is installed on,
// and selects a field's whole text when it takes the focus, so that a new number
// replaces the old one.
class NumericKeyFilter : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
};
