#include "view/frmFind.h"

#include "disc/module1.h"
#include "platform/qt/text.h"
#include "shell/frmDialog.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

namespace quoravel {

frmFind::frmFind(QWidget* parent) : QDialog(parent), txtFind_(new QLineEdit(this)) {
    setObjectName(QStringLiteral("frmFind"));
    setWindowTitle(QStringLiteral("Find"));
    setFixedSize(300, 100);
    txtFind_->setObjectName(QStringLiteral("txtFind"));
    txtFind_->setText(ScreenText(Module1::gStr));
    txtFind_->selectAll();
    Module1::gDoFind = false;

    auto* label = new QLabel(QStringLiteral("Find :"), this);
    label->setObjectName(QStringLiteral("StaticText1"));
    label->setBuddy(txtFind_);
    auto* form = new QFormLayout(this);
    form->addRow(label, txtFind_);
    form->addRow(MakeButtons(*this, "OK", [this] { cmdOK_Action(); }));
}

void frmFind::cmdOK_Action() {
    Module1::gStr = BytesOfScreenText(txtFind_->text());
    Module1::gDoFind = true;
    accept();
}

} // namespace quoravel
