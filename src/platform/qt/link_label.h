#pragma once

#include <QLabel>

namespace quoravel {

/// A text to click on, with the pointing hand over it. The keyboard reaches it too: Tab, then Enter
/// or Space.
class LinkLabel : public QLabel {
    Q_OBJECT

  public:
    explicit LinkLabel(QWidget* parent = nullptr);

  Q_SIGNALS:
    void MouseDown();

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

} // namespace quoravel
