#pragma once

#include "disc/listing.h"
#include "disc/module1.h"
#include "exchange/drag_folder.h"
#include "link/windows.h"
#include "platform/backup.h"
#include "platform/qt/menu_bar.h"
#include "platform/qt/serial_port.h"
#include "view/frmView.h"

#include <QMainWindow>
#include <QPointer>

#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

class QTimer;

namespace quoravel {

class Listbox;
class StatusBox;
class frmTrace;

/// The main window: the start and the end of the program, the catalogues of the loaded disc image
/// in two lists side by side, the selection that every file command works on, the status line of
/// each drive. A drive is 0 or 1, and the number of its list.
class frmMain : public QMainWindow, private StatusLine, private TransferDesk {
  public:
    frmMain();
    ~frmMain() override;

    /// Starts the program: preferences, the window's place, a blank two-sided disc, option marks.
    void Event_Open();

    /// Rebuilds the list of a drive from the image, its status line and the title bar. The
    /// selection goes to row 0 of that list if it has rows, and is empty otherwise.
    void GetRootTitles(int drive);

    /// Sets up the columns of a list.
    void MakeRootColumns(int drive);

    /// Places lists and status lines for lists of `width` pixels.
    void SizeControls(int width);

    /// Asks whether to save the changes, and saves if told to. The changes count as saved whatever
    /// the answer; only a save that fails leaves them marked.
    void QuerySaveChanges();

    /// Loads an image file in the form that its name asks for and sets up the lists. Asks nothing
    /// about unsaved changes. A file that cannot be read, or a job that holds the disc, is told in
    /// a box, changes nothing and gives false.
    bool OpenDisc(const std::filesystem::path& file);

    enum class SaveResult { Saved, Cancelled, Failed };

    /// Saves to `file`, or asks for a file if it is empty, in the form that the name asks for. The
    /// first save over a file that was opened keeps a copy of it as it was. A save that fails is
    /// told in a box and leaves everything as it was.
    SaveResult DiscSave(const std::filesystem::path& file);

    // A new blank image in place of the one in memory. gsFile stays as it is: a plain save still
    // goes to the file opened before.
    void DiscNew80DSD();
    void DiscNew80SSD();
    void DiscNew40SSD();
    void DiscNew80DSDWatford();
    void DiscNew80SSDWatford();
    void DiscNew40SSDWatford();

  protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

  private:
    void BuildPane(int drive);
    void ConnectList(Listbox& list, int drive);
    void AddMenuHandlers();
    void RestorePlace();

    /// Tells if a job of several steps, such as a listing, holds the disc in memory. Every command
    /// on the disc asks this first.
    [[nodiscard]] bool DiscIsFree() const;

    bool Event_CancelClose();
    void Event_Close();
    void Event_Resized();

    [[nodiscard]] bool KeepCopyOf(const std::filesystem::path& file, const std::string& name);
    void DiscOpenDiscImage_Action();
    void DiscSaveDiscImage_Action();
    void DiscSaveDiscImageAs_Action();
    void DiscCompactDisc_Action();
    void DiscSetTitle_Action();
    void DiscSetBootOptions_Action();
    void FileViewAsText_Action();
    void FileViewAsBasic_Action();
    void FileDisassembleFile_Action();
    void FileViewAsHex_Action();
    void FileViewAsWordwise_Action();
    void DiscViewAsCAT_Action();
    void DiscViewAsEX_Action();
    void DiscViewFreeSpaceMap_Action();
    void FileSelectAll_Action();
    void FileLockFile_Action();
    void FileUnlockFile_Action();
    void FileDeleteFile_Action();
    void FileRenameFile_Action();
    bool FileSetFileAddresses_Action();
    void FileExportFile_Action();
    void DiscEXDrive_Action();
    bool ListFolder();
    void HelpAboutQuoravel_Action();

    void AddLinkHandlers();
    void TavriloSerialPort_Action();
    void TavriloSendBasicProgram_Action();
    static void TavriloCli_Action();
    void TraceWindow_Action();
    void Receive(int drive, bool single_sided);
    void Send(int drive, bool single_sided);
    [[nodiscard]] std::shared_ptr<TransferWindow> NewTransferWindow() override;
    [[nodiscard]] bool PlaysWave() const override;
    static void TraceTrouble(const QString& reason);
    void CloseLinkWindows();

    void lvwDB_GotFocus(int drive);
    void lvwDB_CellClick(int drive, int row);
    void lvwDB_MouseDown(QPoint where);
    void lvwDB_CellAction(int drive, int row, int column);
    void lvwDB_CellKeyDown(int key);
    std::vector<std::filesystem::path> lvwDB_DragRow();
    void lvwDB_DropObject(int drive, const std::vector<std::filesystem::path>& files);
    void tmrRefresh_Action();

    void SetMsgText(int drive, std::string_view text) override;
    void SetTitleBar();
    void SetCurrentDrive(int drive);
    void SetContentWidth(int width);
    void ShowOneSide();
    void ShowBothSides();
    void NewDiscImage(std::string_view root, int drives, int tracks, bool watford);

    [[nodiscard]] Listbox& lvwDB(int drive) const;
    [[nodiscard]] bool IsTwoSided() const;
    [[nodiscard]] bool MayOverrideLocks() const;
    [[nodiscard]] ListRow RowOf(int drive, int row) const;
    [[nodiscard]] std::vector<ListRow> SelectedRows(int drive) const;
    void ViewSelectedFile(ViewTag tag);
    void ForSelectedNames(const std::function<void(const std::string&)>& command);

    struct Pane {
        Listbox* lvwDB;
        StatusBox* Status;
    };

    QWidget* content_;
    std::array<Pane, kDrives> panes_;
    QTimer* tmrRefresh_;
    QtSerial Serial1_;
    QtTimer Timer4_;
    QPointer<frmTrace> frmTr_; ///< the trace window while it is open
    std::weak_ptr<TransferWindow> transfer_;
    const char* job_ =
        nullptr; ///< what holds the disc while events run: "A listing is in progress"
    DragFolder dragged_;
    OpenedFiles opened_;
    Views views_;
    MenuBar menu_;
};

} // namespace quoravel
