// frmMain: showing a file or the disc in a window of its own.

#include "shell/frmMain.h"

namespace quoravel {

void frmMain::ViewSelectedFile(ViewTag tag) {
    if (Module1::mSelectedItem >= 0)
        views_.Open(tag, RowOf(Module1::cur_drive, Module1::mSelectedItem));
}

void frmMain::FileViewAsText_Action() {
    ViewSelectedFile(kTextView);
}

void frmMain::FileViewAsHex_Action() {
    ViewSelectedFile(kHexView);
}

void frmMain::FileViewAsBasic_Action() {
    ViewSelectedFile(kBasicView);
}

void frmMain::FileViewAsWordwise_Action() {
    ViewSelectedFile(kWordwiseView);
}

void frmMain::FileDisassembleFile_Action() {
    ViewSelectedFile(kDisassemblyView);
}

void frmMain::DiscViewFreeSpaceMap_Action() {
    views_.Open(kFreeSpaceMapView);
}

void frmMain::DiscViewAsCAT_Action() {
    views_.Open(kCatView);
}

void frmMain::DiscViewAsEX_Action() {
    views_.Open(kEXView);
}

} // namespace quoravel
