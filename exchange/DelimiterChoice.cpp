#include "exchange/DelimiterChoice.h"

#include "platform/forms/Controls.h"

#include <QVBoxLayout>

namespace exchange {

DelimiterChoice::DelimiterChoice(QWidget* parent)
    : QWidget(parent)
    , m_comma(forms::Named(new QRadioButton(QStringLiteral("Запятая (,)"), this),
                           QStringLiteral("optDelimiter_0")))
    , m_semicolon(forms::Named(new QRadioButton(QStringLiteral("Точка с запятой (;)"), this),
                               QStringLiteral("optDelimiter_1"))) {
    setObjectName(QStringLiteral("optDelimiter"));
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_comma);
    layout->addWidget(m_semicolon);
    m_comma->setChecked(true);
    forms::GroupOptions({m_comma, m_semicolon});
    setFocusProxy(m_comma);
}

QChar DelimiterChoice::Delimiter() const {
    return m_comma->isChecked() ? u',' : u';';
}

} // namespace exchange
