// SPDX-License-Identifier: GPL-3.0-or-later

#include "app/window/notice_rules.h"

#include <algorithm>

#include "control/transitions.h"
#include "l10n/texts/desktop_texts.h"

namespace vantoro {

namespace {

std::string titleOf(Outcome outcome, const L10n& texts) {
    switch (outcome) {
    case Outcome::endedByItself:
        return DesktopText::endedByItself.in(texts.language());
    case Outcome::salvaged:
        return DesktopText::recovered.in(texts.language());
    case Outcome::failed:
        return texts.text(statusKey(RecordingState::Case::failed));
    case Outcome::saved:
        break;
    }
    return texts.text(L10n::Key::recordingSaved);
}

} // namespace

std::optional<Outcome> outcomeOf(RecordingState::Case before, RecordingState::Case now,
                                 StopReason reason) {
    if (now == RecordingState::Case::failed) {
        return Outcome::failed;
    }
    if (now != RecordingState::Case::completed) {
        return std::nullopt;
    }
    if (before != RecordingState::Case::processing) {
        return Outcome::salvaged;
    }
    return reason == StopReason::user ? Outcome::saved : Outcome::endedByItself;
}

Notification outcomeNotification(Outcome outcome,
                                 const std::optional<std::filesystem::path>& recording,
                                 const std::string& message, const L10n& texts) {
    const auto language = texts.language();
    Notification notification{.title = titleOf(outcome, texts),
                              .text = message,
                              .clickLabel = DesktopText::showWindow.in(language),
                              .actions = {}};
    // A message with a recording as the user wanted it says what is missing from it.
    notification.isImportant = outcome != Outcome::salvaged && !message.empty();
    if (outcome == Outcome::failed || !recording) {
        return notification;
    }
    if (message.empty()) {
        notification.text = recording->filename().string();
    }
    notification.actions = {{.key = playAction, .label = DesktopText::play.in(language)},
                            {.key = revealAction, .label = DesktopText::showInFolder.in(language)}};
    return notification;
}

Notification troubleNotification(AudioLevelSource source, SourceCondition condition,
                                 const L10n& texts) {
    const auto name = texts.text(source == AudioLevelSource::systemAudio ? L10n::Key::systemAudio
                                                                         : L10n::Key::microphone);
    return {.title = DesktopText::sourceIs.in(texts.language(),
                                              {name, texts.conditionInShort(condition)}),
            .text = texts.condition(condition),
            .clickLabel = DesktopText::showWindow.in(texts.language()),
            .actions = {}};
}

bool TroubleWatch::isToBeTold(SourceCondition condition, std::int64_t elapsedSeconds) {
    since_ = std::min(since_, elapsedSeconds); // a recording counts from 0 once it has begun
    if (condition != condition_) {
        condition_ = condition;
        since_ = elapsedSeconds;
        isTold_ = condition == SourceCondition::delivering ||
                  (condition == SourceCondition::silent && toldSilence_);
    }
    // Silence lasts that long when it is reported.
    const bool lasts = condition == SourceCondition::silent || elapsedSeconds - since_ >= patience;
    if (isTold_ || condition == SourceCondition::delivering || !lasts) {
        return false;
    }
    isTold_ = true;
    toldSilence_ = toldSilence_ || condition == SourceCondition::silent;
    return true;
}

} // namespace vantoro
