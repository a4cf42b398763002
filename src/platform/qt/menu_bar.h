#pragma once

#include "platform/menu_item.h"

#include <QAction>

#include <functional>
#include <span>
#include <string>
#include <unordered_map>

class QMenu;
class QMenuBar;
class QWidget;

namespace quoravel {

/// The menus of a window, made from a table and driven by the items' names, which are the object
/// names of actions and menus. An item without a handler is dimmed, whatever its rule says.
class MenuBar {
  public:
    /// Fills `bar` from the table. `bar` keeps the items; it must outlive this object.
    MenuBar(QMenuBar& bar, std::span<const MenuItem> table);

    /// Lets `handler` answer the item of that name.
    void Handle(std::string_view name, std::function<void()> handler);

    /// Lets `rule` say when an item without AutoEnable can be chosen; asked each time menus are
    /// about to be shown, and now.
    void SetRule(std::string_view name, std::function<bool()> rule);

    /// The item or menu of that name. There must be one.
    [[nodiscard]] QAction& Item(std::string_view name) const;
    [[nodiscard]] QMenu& Menu(std::string_view name) const;

  private:
    void Fill(QWidget& menu, std::span<const MenuItem> items);
    void AddKeys();
    QMenu* AddMenu(QWidget& parent, const MenuItem& item);
    QAction* AddItem(QWidget& menu, const MenuItem& item);
    void EnableMenuItems();

    QMenuBar& bar_;
    std::unordered_map<std::string, std::function<bool()>> rules_;
};

} // namespace quoravel
