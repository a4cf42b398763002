#pragma once

#include <QString>
#include <QtPlugin>

namespace quoravel {

/// Plays sound files. It lies in a plugin beside the executable, "quoravel-sound", as what it needs
/// of Qt is larger than all the rest; without the plugin the program beeps.
class SoundPlugin {
  public:
    SoundPlugin() = default;
    SoundPlugin(const SoundPlugin&) = delete;
    SoundPlugin& operator=(const SoundPlugin&) = delete;
    virtual ~SoundPlugin() = default;

    /// Starts to play a WAV file and returns at once. Silent where nothing can be heard.
    virtual void Play(const QString& file) = 0;
};

} // namespace quoravel

Q_DECLARE_INTERFACE(quoravel::SoundPlugin, "quoravel.SoundPlugin")
