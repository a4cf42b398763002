#include "support/windows.h"

#include <QAction>
#include <QApplication>
#include <QDropEvent>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

namespace quoravel {

QWidget* Find(const char* window) {
    for (QWidget* top : QApplication::topLevelWidgets())
        if (top->isVisible() && top->objectName() == QLatin1StringView(window))
            return top;
    return nullptr;
}

void Press(const QWidget& window, const char* button) {
    auto& found = Part<QPushButton>(window, button);
    EXPECT_TRUE(found.isEnabled()) << button;
    QTest::mouseClick(&found, Qt::LeftButton);
}

void Drop(const Listbox& list, const QMimeData& data) {
    const QPoint at(40, 60);
    const auto actions = Qt::CopyAction | Qt::MoveAction;
    QDragEnterEvent enter(at, actions, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(list.viewport(), &enter);
    if (!enter.isAccepted())
        return;
    QDragMoveEvent move(at, actions, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(list.viewport(), &move);
    EXPECT_EQ(move.dropAction(), Qt::CopyAction) << "the original must stay where it is";
    QDropEvent drop(at, actions, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(list.viewport(), &drop);
}

void Drop(const Listbox& list, const std::vector<std::filesystem::path>& files) {
    QList<QUrl> urls;
    for (const auto& file : files)
        urls.append(QUrl::fromEncoded(
            "file://" + QByteArray::fromStdString(file.string()).toPercentEncoding("/")));
    QMimeData data;
    data.setUrls(urls);
    Drop(list, data);
}

std::vector<QWidget*> WindowsInReach() {
    QWidget* front = QApplication::activePopupWidget();
    if (front == nullptr)
        front = QApplication::activeModalWidget();
    std::vector<QWidget*> windows;
    for (QWidget* top : QApplication::topLevelWidgets())
        if (top->isVisible() && top->isEnabled() && (front == nullptr || top == front))
            windows.push_back(top);
    return windows;
}

void AddDeeds(QWidget& window, Deeds& deeds) {
    std::string name = window.objectName().toStdString();
    if (name == "frmView")
        name += " " + window.windowTitle().toStdString();
    for (QMenu* menu : window.findChildren<QMenu*>())
        Q_EMIT menu->aboutToShow();
    for (QAction* item : window.findChildren<QAction*>())
        if (item->isEnabled() && item->menu() == nullptr && !item->objectName().isEmpty())
            deeds[name + "/" + item->objectName().toStdString()] = [item] { item->trigger(); };
    for (auto* button : window.findChildren<QPushButton*>())
        if (button->isVisible() && button->isEnabled()) {
            const QString own = button->objectName();
            const QString known_as = own.isEmpty() ? button->text() : own; // those of Qt's boxes
            deeds[name + "/" + known_as.toStdString()] = [button] { button->click(); };
        }
    deeds["close " + name] = [&window] { window.close(); };
}

} // namespace quoravel
