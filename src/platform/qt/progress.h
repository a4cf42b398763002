#pragma once

#include <QProgressBar>
#include <QWidget>

namespace quoravel {

/// A bar from 0 to 100 per cent at 0, called `pb`; `tells` is what a screen reader says of it.
[[nodiscard]] inline QProgressBar* MakeProgressBar(QWidget* parent, const QString& tells) {
    auto* bar = new QProgressBar(parent);
    bar->setObjectName(QStringLiteral("pb"));
    bar->setAccessibleName(tells);
    bar->setRange(0, 100);
    bar->setValue(0);
    return bar;
}

} // namespace quoravel
