#include "shell/frmTitle.h"

#include "disc/catalogue.h"
#include "disc/module1.h"
#include "platform/qt/text.h"
#include "shell/frmDialog.h"

#include <QFormLayout>
#include <QLineEdit>

namespace quoravel {

frmTitle::frmTitle(QWidget* parent) : QDialog(parent), txtTitle_(new QLineEdit(this)) {
    setObjectName(QStringLiteral("frmTitle"));
    setWindowTitle(QStringLiteral("Set Disc Title"));
    txtTitle_->setObjectName(QStringLiteral("txtTitle"));
    txtTitle_->setAccessibleName(QStringLiteral("Title"));
    txtTitle_->setText(ScreenText(GetTitle(Module1::cur_drive))); // leaves the cursor at its end
    auto* form = new QFormLayout(this);
    form->addRow(txtTitle_);
    form->addRow(MakeButtons(*this, "OK", [this] { cmdOK_Action(); }));
}

void frmTitle::cmdOK_Action() {
    SetTitle(Module1::cur_drive, BytesOfScreenText(txtTitle_->text()));
    accept();
}

} // namespace quoravel
