// frmDocument: looking for a text.

#include "disc/module1.h"
#include "platform/qt/edit_field.h"
#include "platform/qt/modal.h"
#include "view/find.h"
#include "view/frmDocument.h"
#include "view/frmFind.h"

#include <algorithm>

namespace quoravel {

void frmDocument::EditFind_Action() {
    ShowModal<frmFind>(this);
    if (!Module1::gDoFind) {
        fp = -1;
        return;
    }
    // Meant: a text that is not there is not told. The match is then position 0, and the control
    // is given a start of -1.
    fp = FindText(rtb_->Text(), Module1::gStr, 1);
    ShowMatch();
}

/// Meant: without a match this switches itself off until the next Find, without a word and without
/// going back to the top.
void frmDocument::EditFindNext_Action() {
    if (fp == -1)
        return;
    fp = FindText(rtb_->Text(), Module1::gStr, fp + 1);
    if (fp == 0)
        fp = -1;
    else
        ShowMatch();
}

/// Selects the match at fp, and puts it in the middle if it cannot be seen.
void frmDocument::ShowMatch() {
    rtb_->SetSelStart(fp - 1);
    rtb_->SetSelLength(static_cast<int>(Module1::gStr.size()));
    const int visible_rows = static_cast<int>(rtb_->Height() / rtb_->TextHeight());
    const int match_row = rtb_->LineNumAtCharPos(fp);
    const int top_row = rtb_->ScrollPosition();
    if (match_row < top_row || match_row > top_row + visible_rows - 1)
        rtb_->SetScrollPosition(std::max(0, static_cast<int>(match_row - visible_rows / 2.0)));
    rtb_->ShowCaretColumn();
    rtb_->Refresh();
}

} // namespace quoravel
