#include "platform/forms/Criterion.h"

namespace forms {

Criterion::Criterion(QCheckBox* box, QLineEdit* field, QString column)
    : m_box(box)
    , m_text(field)
    , m_column(std::move(column)) {
}

Criterion::Criterion(QCheckBox* box, ListBox* field, QString column)
    : m_box(box)
    , m_list(field)
    , m_column(std::move(column)) {
}

bool Criterion::IsTicked() const {
    return m_box->isChecked();
}

QString Criterion::Text() const {
    return m_text ? m_text->text() : m_list->List(m_list->ListIndex());
}

QString Criterion::Clause(const QString& joiner) const {
    const QString comparison = m_text ? QStringLiteral(" LIKE '") : QStringLiteral(" = '");
    return u' ' + joiner + u' ' + m_column + comparison + Text() + u'\'';
}

QWidget* Criterion::Field() const {
    if (m_text)
        return m_text;
    return m_list;
}

} // namespace forms
