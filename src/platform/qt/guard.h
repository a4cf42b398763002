#pragma once

#include "platform/host.h"

#include <QObject>

#include <exception>
#include <type_traits>
#include <utility>

namespace quoravel {

/// Tells in a box of a failure that nobody foresaw, such as memory that has run out: the program
/// goes on, so that the disc can be saved. One box at a time.
void TellFailure(const std::exception& failure);

/// Deletes a window that is closed and hidden, with what stands over it, as soon as no entry from
/// Qt stands any more. Until then a dialog over it may wait below us, or Qt may be about to give it
/// the focus: deleteLater alone would delete it in the events of any wait deeper than those.
void DeleteWhenIdle(QObject* window);

/// That an entry from Qt into the program stands.
class Entered {
  public:
    Entered();
    ~Entered();
    Entered(const Entered&) = delete;
    Entered& operator=(const Entered&) = delete;
};

/// Runs what Qt has called us for. When the program ends inside it, its waits throw AppQuitting,
/// and this is where that stops: exceptions must not pass through Qt. Every entry from Qt into the
/// program goes through here: event overrides by this function, signals by Connect.
template<class Entry>
void Guarded(Entry&& entry) {
    const Entered entered;
    try {
        std::forward<Entry>(entry)();
    } catch (
        const AppQuitting&) { // NOLINT(bugprone-empty-catch): the event loop has been told to end
    } catch (const std::exception& failure) {
        TellFailure(failure);
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
