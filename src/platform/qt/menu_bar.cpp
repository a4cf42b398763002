#include "platform/qt/menu_bar.h"

#include "platform/qt/guard.h"
#include "platform/qt/text.h"

#include <QMenu>
#include <QMenuBar>
#include <QShortcut>

namespace quoravel {

namespace {

/// Qt maps Ctrl to the Command key where there is one, as "Cmd" asks.
QKeySequence KeysOf(std::string_view shortcut) {
    QString keys = HostText(shortcut);
    keys.replace(QStringLiteral("Cmd"), QStringLiteral("Ctrl"));
    return QKeySequence::fromString(keys, QKeySequence::PortableText);
}

constexpr const char* kHasHandler = "hasHandler";

} // namespace

MenuBar::MenuBar(QMenuBar& bar, std::span<const MenuItem> table) : bar_(bar) {
    Fill(bar, table);
    AddKeys();
}

void MenuBar::Fill(QWidget& menu, std::span<const MenuItem> items) {
    for (const MenuItem& item : items) {
        if (item.Children.empty())
            menu.addAction(AddItem(menu, item));
        else
            Fill(*AddMenu(menu, item), item.Children);
    }
}

/// Captions without a mnemonic are meant to be without; their menus open by Alt and their first
/// letter all the same, and the first of all by the desktop's key for menus.
void MenuBar::AddKeys() {
    const auto open_by = [this](const QKeySequence& keys, QAction* menu) {
        auto* shortcut = new QShortcut(keys, &bar_);
        Connect(shortcut, &QShortcut::activated, &bar_, [this, menu] {
            bar_.setActiveAction(menu);
            menu->menu()->setActiveAction(menu->menu()->actions().constFirst());
        });
    };
    open_by(Qt::Key_F10, bar_.actions().constFirst());
    for (QAction* menu : bar_.actions())
        if (!menu->text().contains(u'&'))
            open_by(QStringLiteral("Alt+") + menu->text().front(), menu);
}

QMenu* MenuBar::AddMenu(QWidget& parent, const MenuItem& item) {
    auto* menu = new QMenu(HostText(item.Text), &parent);
    menu->setObjectName(HostText(item.Name));
    parent.addAction(menu->menuAction());
    Connect(menu, &QMenu::aboutToShow, &bar_, [this] { EnableMenuItems(); });
    return menu;
}

QAction* MenuBar::AddItem(QWidget& menu, const MenuItem& item) {
    const bool is_separator = item.Text == "-"; // which is no text to be shown
    auto* action = new QAction(is_separator ? QString() : HostText(item.Text), &menu);
    action->setObjectName(HostText(item.Name));
    action->setSeparator(is_separator);
    action->setShortcut(KeysOf(item.KeyboardShortcut));
    action->setCheckable(item.Checkable);
    action->setMenuRole(QAction::NoRole);
    action->setEnabled(action->isSeparator());
    return action;
}

void MenuBar::Handle(std::string_view name, std::function<void()> handler) {
    QAction& item = Item(name);
    item.setProperty(kHasHandler, true);
    item.setEnabled(true);
    Connect(&item, &QAction::triggered, &bar_, std::move(handler));
    EnableMenuItems();
}

void MenuBar::SetRule(std::string_view name, std::function<bool()> rule) {
    rules_[std::string(name)] = std::move(rule);
    EnableMenuItems();
}

void MenuBar::EnableMenuItems() {
    for (const auto& [name, rule] : rules_) {
        QAction& item = Item(name);
        item.setEnabled(item.property(kHasHandler).toBool() && rule());
    }
}

QAction& MenuBar::Item(std::string_view name) const {
    auto* item = bar_.findChild<QAction*>(HostText(name));
    Q_ASSERT(item != nullptr);
    return *item;
}

QMenu& MenuBar::Menu(std::string_view name) const {
    auto* menu = bar_.findChild<QMenu*>(HostText(name));
    Q_ASSERT(menu != nullptr);
    return *menu;
}

} // namespace quoravel
