#pragma once

#include "platform/qt/menu_bar.h"

#include <QMainWindow>

#include <functional>
#include <memory>
#include <string>

namespace quoravel {

class EditField;

/// A window with a text to read: it can be searched, saved and printed, and the window comes back
/// at the place where one like it was closed.
///
/// Such windows are held by shared_ptr. Their handlers hold them too, as they may pump events, and
/// so does whoever fills them: a window that is closed meanwhile is hidden, and goes when the last
/// of them lets go.
class frmDocument : public QMainWindow, public std::enable_shared_from_this<frmDocument> {
  public:
    /// Places the window; to be called once, before it is shown.
    virtual void Event_Open();

    /// True from the moment at which the window was closed; it stays so.
    [[nodiscard]] bool IsClosed() const { return closed_; }

    std::string gName;     ///< of what is shown: the name offered by Save
    int fp = 0;            ///< position of the last match, from 1; 0: none; -1: Find Next is off
    std::string PageSetup; ///< SetupString of the confirmed Page Setup; empty until there is one

    std::function<void()> Closed; ///< called when the window has been closed

  protected:
    /// The names that make one kind of window: its own, its text control's, the one that the keys
    /// of its place in the preferences begin with.
    struct Names {
        const char* window;
        const char* text;
        std::string_view place;
    };

    explicit frmDocument(const Names& names);

    [[nodiscard]] EditField& rtb() const { return *rtb_; }

    [[nodiscard]] QWidget& content() const { return *content_; }

    [[nodiscard]] MenuBar& menu() { return menu_; }

    /// Makes the text fill the window.
    virtual void Form_Resize();

    // For a window that has something else to copy from as well.
    virtual void EditCopy_Action();
    virtual void EditSelectAll_Action();

    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void AddMenuHandlers();
    void Event_Close();

    void FileClose_Action();
    void FileSaveFile_Action();
    void FilePageSetup_Action();
    void FilePrint_Action();
    void FileQuit_Action();
    void EditFind_Action();
    void EditFindNext_Action();
    void ShowMatch();
    [[nodiscard]] std::string HostName() const;

    std::string_view place_;
    QWidget* content_;
    EditField* rtb_;
    MenuBar menu_;
    bool closed_ = false;
};

} // namespace quoravel
