// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/app_delegate.h"

#include <utility>

#include <QtCore/QEvent>
#include <QtWidgets/QApplication>

#include "ui/style/symbols.h"

namespace vantoro {

namespace {

// The desktop remembers the items' positions by these names.
const std::string systemAudioItem = "com.vantoro.app.system-audio-level";
const std::string microphoneItem = "com.vantoro.app.microphone-level";

} // namespace

AppDelegate::AppDelegate(Surroundings surroundings)
    : surroundings_(std::move(surroundings)),
      texts_(surroundings_.preferences),
      pictures_(panelColor(QApplication::palette(), surroundings_.desktops)) {}

void AppDelegate::applicationWillFinishLaunching() {
    applyApplicationIcon();
}

void AppDelegate::applicationDidFinishLaunching() {
    applyApplicationIcon();
    registerStatusItems();
}

void AppDelegate::applyApplicationIcon() {
    if (const auto icon = applicationIcon(); !icon.isNull()) {
        QApplication::setWindowIcon(icon);
    }
}

void AppDelegate::registerStatusItems() {
    systemAudioStatusItem_ = makeStatusItem(systemAudioItem, L10n::Key::systemAudio);
    microphoneStatusItem_ = makeStatusItem(microphoneItem, L10n::Key::microphone);
    updateStatusItems(0, 0);
    showScene();
    levelSubscription_ = connect(&surroundings_.levels, &AudioLevelStore::levelChanged, this,
                                 &AppDelegate::showLevels, Qt::QueuedConnection);
    connect(&surroundings_.levels, &AudioLevelStore::conditionChanged, this,
            &AppDelegate::showLevels, Qt::QueuedConnection);
    showLevels();
    QApplication::instance()->installEventFilter(this);
}

std::unique_ptr<StatusItem> AppDelegate::makeStatusItem(const std::string& autosaveName,
                                                        L10n::Key toolTip) const {
    return surroundings_.statusArea.makeItem({.identifier = autosaveName,
                                              .toolTip = texts_.text(toolTip),
                                              .clicked = surroundings_.showMainWindow,
                                              .chosen = surroundings_.carryOut});
}

void AppDelegate::setScene(const StatusScene& scene) {
    const bool wasRecording = isRecording();
    scene_ = scene;
    if (!systemAudioStatusItem_) {
        return;
    }
    showScene();
    if (isRecording() != wasRecording) {
        showLevels();
    }
}

void AppDelegate::showScene() {
    for (const auto& item : {systemAudioStatusItem_.get(), microphoneStatusItem_.get()}) {
        item->setToolTipDetail(toolTipDetail(scene_, texts_));
        item->setMenu(statusMenu(scene_, texts_));
    }
}

void AppDelegate::showLevels() {
    updateStatusItems(surroundings_.levels.systemAudioLevel(),
                      surroundings_.levels.microphoneLevel());
}

void AppDelegate::updateStatusItems(double systemLevel, double microphoneLevel) {
    systemAudioStatusItem_->setImage(
        pictures_.picture(LevelSymbol::loudspeaker, systemLevel, isRecording()),
        description(AudioLevelSource::systemAudio, L10n::Key::systemAudio));
    microphoneStatusItem_->setImage(
        pictures_.picture(LevelSymbol::microphone, microphoneLevel, isRecording()),
        description(AudioLevelSource::microphone, L10n::Key::microphone));
}

bool AppDelegate::isRecording() const {
    return scene_.state == RecordingState::Case::recording;
}

/// The name alone if the source delivers; otherwise with its condition.
std::string AppDelegate::description(AudioLevelSource source, L10n::Key name) const {
    const auto condition = texts_.condition(surroundings_.levels.condition(source));
    return texts_.text(name) + (condition.empty() ? condition : ": " + condition);
}

/// Redraws the meters when the desktop switches between light and dark.
bool AppDelegate::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange && watched == qApp) {
        pictures_.setColor(panelColor(QApplication::palette(), surroundings_.desktops));
        showLevels();
    }
    return QObject::eventFilter(watched, event);
}

} // namespace vantoro
