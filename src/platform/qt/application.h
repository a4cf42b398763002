#pragma once

#include <QApplication>

#include <filesystem>
#include <functional>

namespace quoravel {

/// The application object. It does nothing but hand on a document that the operating system opens.
class App : public QApplication {
  public:
    App(int& argc, char** argv);

    /// Called with each document that the desktop asks the program to open.
    std::function<void(const std::filesystem::path&)> Event_OpenDocument;

  protected:
    bool event(QEvent* event) override;

  private:
    void OpenDocument(const std::filesystem::path& file);
};

} // namespace quoravel
