#include "platform/qt/sound/wave_player.h"

#include <QUrl>

namespace quoravel {

void WavePlayer::Play(const QString& file) {
    effect_.setSource(QUrl::fromLocalFile(file));
    effect_.play();
}

} // namespace quoravel
