#pragma once

#include <QFrame>

#include <string_view>

class QLabel;

namespace quoravel {

/// A frame with a line of text. To a screen reader it is a status bar.
class StatusBox : public QFrame {
    Q_OBJECT

  public:
    explicit StatusBox(QWidget* parent);

    [[nodiscard]] QLabel& Text() const { return *text_; }

    void SetText(std::string_view latin1);

    /// The height in pixels that the text needs, 20 at least.
    [[nodiscard]] int LeastHeight() const;

  protected:
    void resizeEvent(QResizeEvent* event) override;

  private:
    void PlaceText();

    QLabel* text_;
};

} // namespace quoravel
