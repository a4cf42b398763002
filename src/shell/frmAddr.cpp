#include "shell/frmAddr.h"

#include "disc/file_commands.h"
#include "disc/module1.h"
#include "platform/host.h"
#include "platform/qt/guard.h"
#include "platform/qt/text.h"
#include "shell/frmDialog.h"

#include <QFormLayout>
#include <QLineEdit>

namespace quoravel {

frmAddr::frmAddr(QWidget* parent)
    : QDialog(parent), txtLoad_(new QLineEdit(this)), txtExec_(new QLineEdit(this)) {
    setObjectName(QStringLiteral("frmAddr"));
    setWindowTitle(QStringLiteral("Set File Addresses"));
    txtLoad_->setObjectName(QStringLiteral("txtLoad"));
    txtExec_->setObjectName(QStringLiteral("txtExec"));
    txtLoad_->setText(ScreenText(Module1::a_load));
    txtExec_->setText(ScreenText(Module1::a_exec));
    auto* form = new QFormLayout(this);
    form->addRow(QStringLiteral("Load Address"), txtLoad_);
    form->addRow(QStringLiteral("Exec Address"), txtExec_);
    form->addRow(MakeButtons(*this, "Ok", [this] { cmdOK_Action(); }));
}

void frmAddr::cmdOK_Action() {
    Module1::a_load = BytesOfScreenText(txtLoad_->text());
    Module1::a_exec = BytesOfScreenText(txtExec_->text());
    Module1::a_change = true;
    if (const auto refusal = CheckAddresses(Module1::a_load, Module1::a_exec))
        host().MsgBox(*refusal);
    else
        accept();
}

void frmAddr::reject() {
    Module1::a_change = false;
    QDialog::reject();
}

} // namespace quoravel
