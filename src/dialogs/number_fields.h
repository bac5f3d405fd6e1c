// What the number fields of the dialogs share: reading them and restricting what can be typed.
#pragma once

#include <QDoubleValidator>
#include <QLineEdit>
#include <QLocale>

/// The number in a field, in the C locale whatever the desktop's; 0 when the text is no number.
inline double numberIn(const QLineEdit* field) {
    return field->text().toDouble();
}

/// How numbers are typed and read: a point on every desktop, and no comma, which would pass as a group
/// separator and then be read as 0.
inline QLocale localeOfNumbers() {
    QLocale locale = QLocale::c();
    locale.setNumberOptions(QLocale::RejectGroupSeparator);
    return locale;
}

/// Restricts typing to numbers from `bottom` to `top` with 6 decimals, the way `numberIn` reads them. A
/// second call changes the range.
inline void setNumberRange(QLineEdit* field, double bottom, double top) {
    delete field->validator();
    auto* const validator = new QDoubleValidator(bottom, top, 6, field);
    validator->setLocale(localeOfNumbers());
    field->setValidator(validator);
}
