#pragma once

#include <QDialog>

namespace quoravel {

/// The window that tells what the program is, with a link for mail and one for the web.
class frmAbout : public QDialog {
  public:
    explicit frmAbout(QWidget* parent);

  private:
    void OpenLink(std::string_view url);
};

} // namespace quoravel
