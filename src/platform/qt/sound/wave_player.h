#pragma once

#include "platform/qt/sound_plugin.h"

#include <QObject>
#include <QSoundEffect>

namespace quoravel {

/// Plays one sound at a time; a new one ends the one before.
class WavePlayer : public QObject, public SoundPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "quoravel.SoundPlugin")
    Q_INTERFACES(quoravel::SoundPlugin)

  public:
    void Play(const QString& file) override;

  private:
    QSoundEffect effect_;
};

} // namespace quoravel
