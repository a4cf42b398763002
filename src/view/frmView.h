#pragma once

#include "disc/listing.h"
#include "view/frmDocument.h"
#include "view/sink.h"

#include <memory>
#include <string_view>
#include <vector>

namespace quoravel {

/// What a view window shows.
enum ViewTag {
    kTextView,
    kHexView,
    kBasicView,
    kFreeSpaceMapView,
    kCatView,
    kEXView,
    kDisassemblyView,
    kWordwiseView,
};

/// The window that shows a file or the disc as a document. A renderer writes the text once; later
/// changes of the disc do not alter it.
class frmView : public frmDocument, private ViewSink {
  public:
    /// For views of a file: the cells of its row in the list.
    explicit frmView(ListRow file);

    void Event_Open() override;

    /// Runs the renderer that Tag asks for and shows the first page. The event loop runs meanwhile.
    /// Ends early, without a word, if the window is closed.
    void Show_File();

    int Tag = kTextView; ///< a ViewTag; any other value shows nothing

  private:
    void ShowText();
    void ShowHex();
    void Show_Basic();
    void ShowMap();
    void ShowCat();
    void ShowEX();
    void ShowDis();
    void ShowWordwise();
    void RunRenderer();

    void ShowData(std::string_view text) override;
    void WriteGathered();
    void SetTitle(std::string_view title);
    void NameAfterFile(std::string_view what);

    ListRow file_;

    std::string gathered_; ///< part of a line that has not gone to the control yet
    bool gathered_underline_ = false;
    bool gathered_bold_ = false;
};

/// The view windows that are open.
class Views {
  public:
    Views() = default;
    Views(const Views&) = delete;
    Views& operator=(const Views&) = delete;
    ~Views();

    /// Opens one more window and fills it. Returns when it is complete, or closed.
    void Open(ViewTag tag, const ListRow& file = {});

    /// Closes all of them, as the user would.
    void CloseAll();

  private:
    std::vector<std::shared_ptr<frmView>> open_;
};

namespace Module1 {

inline std::weak_ptr<frmView> gViewForm; ///< the newest view window, as long as there is one

} // namespace Module1

} // namespace quoravel
