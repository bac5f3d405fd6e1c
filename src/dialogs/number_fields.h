// What the number fields of the dialogs share: reading them and restricting what can be typed.
#pragma once

#include <QDoubleValidator>
#include <QLineEdit>

/// The number in a field, in the C locale whatever the desktop's; 0 when the text is no number.
inline double numberIn(const QLineEdit* field) {
    return field->text().toDouble();
}

/// Restricts typing to numbers from `bottom` to `top` with 6 decimals, the way `numberIn` reads them:
/// a point on every desktop, and no comma, which would pass as a group separator and then be read as 0.
/// A second call changes the range.
inline void setNumberRange(QLineEdit* field, double bottom, double top) {
    delete field->validator();
    auto* const validator = new QDoubleValidator(bottom, top, 6, field);
    QLocale locale = QLocale::c();
    locale.setNumberOptions(QLocale::RejectGroupSeparator);
    validator->setLocale(locale);
    field->setValidator(validator);
}
