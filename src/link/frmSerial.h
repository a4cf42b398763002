#pragma once

#include "platform/qt/serial_port.h"

#include <QDialog>

#include <vector>

class QComboBox;

namespace quoravel {

/// Asks which port the cable is in. Opens with the first one, whatever was chosen before.
class frmSerial : public QDialog {
  public:
    frmSerial(QWidget* parent, QtSerial& serial);

  private:
    void cmdOK_Action();

    QtSerial& serial_;
    std::vector<PortInfo> ports_;
    QComboBox* popSP_;
};

} // namespace quoravel
