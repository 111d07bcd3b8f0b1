#pragma once

#include <QLabel>

/// A text that acts as a link: blue in every theme, with a hand for a pointer; a click, Enter or the space
/// bar follows it. Assistive tools see a link that can be pressed.
class LinkLabel : public QLabel {
    Q_OBJECT

public:
    explicit LinkLabel(const QString& text, QWidget* parent = nullptr);

Q_SIGNALS:
    void Click();

protected:
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    void Colour();
};
