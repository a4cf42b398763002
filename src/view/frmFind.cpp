#include "view/frmFind.h"

#include "disc/module1.h"
#include "platform/qt/text.h"
#include "shell/frmDialog.h"

#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>

namespace quoravel {

namespace {

constexpr QSize kSize(300, 100); // with letters of the usual size; large ones need more

} // namespace

frmFind::frmFind(QWidget* parent) : QDialog(parent), txtFind_(new QLineEdit(this)) {
    setObjectName(QStringLiteral("frmFind"));
    setWindowTitle(QStringLiteral("Find"));
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
    setFixedSize(kSize.expandedTo(sizeHint()));
}

void frmFind::cmdOK_Action() {
    Module1::gStr = BytesOfScreenText(txtFind_->text());
    Module1::gDoFind = true;
    accept();
}

} // namespace quoravel
