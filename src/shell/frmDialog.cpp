#include "shell/frmDialog.h"

#include "platform/qt/guard.h"
#include "platform/qt/text.h"

#include <QDialog>
#include <QDialogButtonBox>
#include <QPushButton>

namespace quoravel {

QWidget* MakeButtons(QDialog& dialog, std::string_view ok, std::function<void()> action) {
    auto* buttons = new QDialogButtonBox(&dialog);
    auto* accept = buttons->addButton(HostText(ok), QDialogButtonBox::AcceptRole);
    accept->setObjectName(QStringLiteral("cmdOK"));
    accept->setDefault(true);
    auto* cancel = buttons->addButton(QStringLiteral("Cancel"), QDialogButtonBox::RejectRole);
    cancel->setObjectName(QStringLiteral("cmdCancel"));
    Connect(accept, &QPushButton::clicked, &dialog, std::move(action));
    Connect(cancel, &QPushButton::clicked, &dialog, [&dialog] { dialog.reject(); });
    return buttons;
}

} // namespace quoravel
