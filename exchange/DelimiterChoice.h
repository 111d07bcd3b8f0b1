#pragma once

#include <QRadioButton>
#include <QWidget>

namespace exchange {

/// The two option buttons optDelimiter(0) and (1): comma, selected at the start, or semicolon.
class DelimiterChoice : public QWidget {
    Q_OBJECT

public:
    explicit DelimiterChoice(QWidget* parent = nullptr);

    QChar Delimiter() const;
    /// The first button, for the label of the pair.
    QRadioButton* First() const { return m_comma; }

private:
    QRadioButton* m_comma;
    QRadioButton* m_semicolon;
};

} // namespace exchange
