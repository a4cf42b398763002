#include "shell/frmBoot.h"

#include "disc/catalogue.h"
#include "disc/module1.h"
#include "platform/qt/text.h"
#include "shell/frmDialog.h"

#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>
#include <string_view>

namespace quoravel {

namespace {

constexpr std::array<std::string_view, 4> kOptions{"Off", "Load", "Run", "Exec"};

} // namespace

frmBoot::frmBoot(QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("frmBoot"));
    setWindowTitle(QStringLiteral("Set Boot Attributes"));
    auto* column = new QVBoxLayout(this);
    for (std::size_t i = 0; i < kOptions.size(); ++i) {
        options_[i] = new QRadioButton(HostText(kOptions[i]), this);
        options_[i]->setObjectName(QStringLiteral("opt") + HostText(kOptions[i]));
        column->addWidget(options_[i]);
    }
    QRadioButton* set = options_[static_cast<std::size_t>(BootOption(Module1::cur_drive))];
    set->setChecked(true);
    set->setFocus();
    column->addWidget(MakeButtons(*this, "OK", [this] { cmdOK_Action(); }));
}

/// Meant: neither the cycle number nor the mark for changes moves.
void frmBoot::cmdOK_Action() {
    const auto on = std::ranges::find_if(options_, &QRadioButton::isChecked);
    SetBootOption(Module1::cur_drive, static_cast<int>(on - options_.begin()));
    accept();
}

} // namespace quoravel
