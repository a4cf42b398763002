#include "link/frmSerial.h"

#include "disc/module1.h"
#include "link/serial.h"
#include "shell/frmDialog.h"

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

namespace quoravel {

namespace {

constexpr int kLeastWidth = 320; // shows the title whole

} // namespace

frmSerial::frmSerial(QWidget* parent, QtSerial& serial)
    : QDialog(parent), serial_(serial), ports_(SystemSerialPorts()), popSP_(new QComboBox(this)) {
    setObjectName(QStringLiteral("frmSerial"));
    setWindowTitle(QStringLiteral("Select Serial Port"));
    setMinimumWidth(kLeastWidth);
    popSP_->setObjectName(QStringLiteral("popSP"));
    for (const PortInfo& port : ports_)
        popSP_->addItem(port.Name);
    popSP_->setCurrentIndex(Module1::gSerialPort);
    auto* label = new QLabel(QStringLiteral("&Port :"), this);
    label->setBuddy(popSP_);
    auto* form = new QFormLayout(this);
    form->addRow(label, popSP_);
    form->addRow(MakeButtons(*this, "OK", [this] { cmdOK_Action(); }));
}

/// Meant: a port that is open stays so, and the choice counts from the next opening on.
void frmSerial::cmdOK_Action() {
    if (const int index = popSP_->currentIndex(); index != -1) {
        serial_.Bind(ports_[static_cast<std::size_t>(index)].system_path);
        serial_.SetProfile(kTransferProfile);
        serial_.Poll();
    }
    accept();
}

} // namespace quoravel
