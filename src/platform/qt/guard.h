#pragma once

#include "platform/host.h"

#include <QObject>

#include <type_traits>
#include <utility>

namespace quoravel {

/// Runs what Qt has called us for. When the program ends inside it, its waits throw AppQuitting,
/// and this is where that stops: exceptions must not pass through Qt. Every entry from Qt into the
/// program goes through here: event overrides by this function, signals by Connect.
template<class Entry>
void Guarded(Entry&& entry) {
    try {
        std::forward<Entry>(entry)();
    } catch (
        const AppQuitting&) { // NOLINT(bugprone-empty-catch): the event loop has been told to end
    }
}

/// QObject::connect with the guard around `slot`, which takes the signal's arguments or none.
template<class Sender, class Owner, class... Arguments, class Slot>
void Connect(Sender* sender, void (Owner::*signal)(Arguments...), QObject* context, Slot slot,
             Qt::ConnectionType type = Qt::AutoConnection) {
    const auto guarded = [slot](Arguments... arguments) mutable {
        Guarded([&] {
            if constexpr (std::is_invocable_v<Slot&, Arguments...>)
                slot(std::forward<Arguments>(arguments)...);
            else
                slot();
        });
    };
    QObject::connect(sender, signal, context, guarded, type);
}

} // namespace quoravel
