#include "platform/qt/accessible.h"

#include <QAccessibleWidget>
#include <QWidget>

namespace quoravel {

namespace {

constexpr const char* kRole = "toldAs";

QAccessibleInterface* InterfaceWithRole(const QString& /*class_name*/, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    const QVariant role = object->property(kRole);
    if (widget == nullptr || !role.isValid())
        return nullptr;
    return new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt()));
}

} // namespace

void TellAs(QWidget& widget, QAccessible::Role role) {
    widget.setProperty(kRole, static_cast<int>(role));
    QAccessible::installFactory(InterfaceWithRole); // one is kept, however often it is installed
}

} // namespace quoravel
