#pragma once

#include <QCursor>
#include <QGuiApplication>

namespace quoravel {

/// The busy cursor for as long as this lives.
class BusyCursor {
  public:
    BusyCursor() { QGuiApplication::setOverrideCursor(Qt::WaitCursor); }

    BusyCursor(const BusyCursor&) = delete;
    BusyCursor& operator=(const BusyCursor&) = delete;

    ~BusyCursor() { QGuiApplication::restoreOverrideCursor(); }
};

} // namespace quoravel
