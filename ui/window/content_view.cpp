// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/window/content_view.h"

#include <algorithm>

#include <QtCore/QEvent>
#include <QtWidgets/QApplication>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QVBoxLayout>

#include "control/transitions.h"
#include "ui/style/decorations.h"
#include "ui/style/fonts.h"
#include "ui/style/keys.h"
#include "ui/style/metrics.h"
#include "ui/window/accessible_parts.h"

namespace vantoro {

namespace {

constexpr int headerMargin = 5;
constexpr int barMargin = 6;
const RecordingProperties::Values usual;

} // namespace

ContentView::ContentView(RecordingViewModel& model, const Preferences& preferences, QWidget* parent)
    : QWidget(parent),
      model_(model),
      texts_(preferences),
      column_(new Column),
      refresh_(new SymbolButton(Symbol::refresh)),
      status_(new StatusPanel),
      sources_(new Card),
      systemAudio_(new SourceRow(Symbol::computer)),
      microphone_(new SourceRow(Symbol::microphone)),
      input_(new InputRow),
      screenPermission_(new PermissionRow),
      microphonePermission_(new PermissionRow),
      recording_(new Card),
      systemVolume_(new VolumeRow(Symbol::speaker, usual.systemVolume)),
      microphoneVolume_(new VolumeRow(Symbol::microphone, usual.microphoneVolume)),
      folder_(new FolderRow),
      completed_(new CompletedPanel),
      record_(new RecordButton) {
    describeParts();
    setPalette(readablePalette(QApplication::palette()));
    auto* const all = new QVBoxLayout(this);
    all->setContentsMargins(0, 0, 0, 0);
    all->setSpacing(0);
    all->addWidget(makeHeader());
    all->addWidget(new Separator(this));
    all->addWidget(fillColumn(), 1);
    all->addWidget(new Separator(this));
    all->addWidget(makeBar());
    connectUser();
    connect(&model_, &RecordingProperties::propertyChanged, this, &ContentView::showProperty);
    showAll();
}

void ContentView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
        setPalette(readablePalette(QApplication::palette()));
    }
}

QWidget* ContentView::makeHeader() {
    auto* const header = new QWidget(this);
    auto* const row = new QHBoxLayout(header);
    // The symbol ends at the edge, not the frame that appears around it under the mouse.
    const int frame = (refresh_->sizeHint().width() - refresh_->iconSize().width()) / 2;
    row->setContentsMargins(padding, headerMargin, padding - frame, headerMargin);
    row->setSpacing(10);
    row->addWidget(new HeaderIcon(header));
    auto* const title = new QLabel(QStringLiteral("Vantoro"), header);
    title->setFont(titleFont(font()));
    row->addWidget(title);
    row->addStretch();
    refresh_->setAutoRaise(true);
    row->addWidget(refresh_);
    return header;
}

QWidget* ContentView::fillColumn() {
    for (auto* const row : std::initializer_list<QWidget*>{systemAudio_, microphone_}) {
        sources_->addRow(row);
    }
    sources_->addToLastRow(input_);
    sources_->addRow(screenPermission_);
    sources_->addToLastRow(microphonePermission_);
    for (auto* const row :
         std::initializer_list<QWidget*>{systemVolume_, microphoneVolume_, folder_}) {
        recording_->addRow(row);
    }
    for (auto* const panel :
         std::initializer_list<QWidget*>{status_, sources_, recording_, completed_}) {
        column_->addPanel(panel);
    }
    return column_;
}

QWidget* ContentView::makeBar() {
    auto* const bar = new QWidget(this);
    auto* const row = new QHBoxLayout(bar);
    row->setContentsMargins(padding, barMargin - ringMargin, padding - ringMargin,
                            barMargin - ringMargin);
    row->addStretch();
    row->addWidget(record_);
    return bar;
}

void ContentView::connectUser() {
    const auto onModel = [this](auto* sender, auto signal, auto operation) {
        connect(sender, signal, &model_, operation);
    };
    onModel(refresh_, &QToolButton::clicked, &RecordingViewModel::refreshDevicesAndPermissions);
    onModel(systemAudio_, &SourceRow::switched, &RecordingProperties::setCaptureSystemAudio);
    onModel(microphone_, &SourceRow::switched, &RecordingProperties::setCaptureMicrophone);
    onModel(input_, &InputRow::picked, &RecordingProperties::setSelectedMicrophoneID);
    onModel(screenPermission_, &PermissionRow::settingsWanted,
            &RecordingViewModel::openScreenCaptureSettings);
    onModel(microphonePermission_, &PermissionRow::settingsWanted,
            &RecordingViewModel::openMicrophoneSettings);
    onModel(systemVolume_, &VolumeRow::volumeMoved, &RecordingProperties::setSystemVolume);
    onModel(microphoneVolume_, &VolumeRow::volumeMoved, &RecordingProperties::setMicrophoneVolume);
    onModel(folder_, &FolderRow::changeWanted, &RecordingViewModel::chooseOutputDirectory);
    onModel(folder_, &FolderRow::openWanted, &RecordingViewModel::revealOutputDirectory);
    onModel(completed_, &CompletedPanel::playWanted, &RecordingViewModel::playLastRecording);
    onModel(completed_, &CompletedPanel::revealWanted, &RecordingViewModel::revealLastRecording);
    onModel(record_, &QPushButton::clicked, &RecordingViewModel::toggleRecording);
}

QString ContentView::text(L10n::Key key) const {
    return QString::fromStdString(texts_.text(key));
}

void ContentView::showAll() {
    showTexts();
    showState();
    showSources();
    showPermissions();
    showMeters();
    for (const auto property :
         {Property::systemVolume, Property::elapsedSeconds, Property::progress,
          Property::outputDirectory, Property::lastRecordingURL}) {
        showProperty(property);
    }
    column_->updateGeometry(); // it has another height in each language
}

void ContentView::showTexts() {
    using Key = L10n::Key;
    refresh_->setHelp(text(Key::refreshAudioDevices), refreshKeys);
    status_->setTexts(texts_);
    sources_->setTitle(text(Key::audioSources));
    systemAudio_->setTexts(text(Key::systemAudio), text(Key::meetingAndAppSound));
    microphone_->setTexts(text(Key::microphone), text(Key::yourVoice));
    input_->setTitle(text(Key::input));
    PermissionRow::Texts permission{.title = text(Key::screenAndSystemAudio),
                                    .allowed = text(Key::allowed),
                                    .required = text(Key::required),
                                    .settings = text(Key::settings),
                                    .note = text(Key::microphonePermissionOnStart)};
    screenPermission_->setTexts(permission);
    permission.title = text(Key::microphone);
    microphonePermission_->setTexts(permission);
    recording_->setTitle(text(Key::recordingPanel));
    systemVolume_->setTitle(text(Key::systemLevel));
    microphoneVolume_->setTitle(text(Key::micLevel));
    const int width = std::max(systemVolume_->titleWidth(), microphoneVolume_->titleWidth());
    systemVolume_->setTitleWidth(width);
    microphoneVolume_->setTitleWidth(width);
    folder_->setTexts(text(Key::change), text(Key::openRecordingFolder));
    completed_->setTexts(text(Key::recordingSaved), text(Key::playRecording),
                         text(Key::showInFinder));
    record_->setTexts(text(Key::startRecording), text(Key::stopRecording));
}

void ContentView::showProperty(Property property) {
    const auto& values = model_.values();
    switch (property) {
    case Property::state:
        showState();
        showSources();
        break;
    case Property::captureSystemAudio:
    case Property::captureMicrophone:
    case Property::microphones:
    case Property::selectedMicrophoneID:
        showSources();
        break;
    case Property::systemVolume:
    case Property::microphoneVolume:
        systemVolume_->setVolume(values.systemVolume);
        microphoneVolume_->setVolume(values.microphoneVolume);
        break;
    case Property::systemAudioLevel:
    case Property::microphoneLevel:
    case Property::systemAudioCondition:
    case Property::microphoneCondition:
        showMeters();
        break;
    case Property::elapsedSeconds:
        status_->setElapsed(QString::fromStdString(model_.formattedElapsedTime()));
        break;
    case Property::outputDirectory:
        folder_->setFolder(values.outputDirectory);
        break;
    case Property::lastRecordingURL:
        showLastRecording();
        break;
    case Property::hasScreenPermission:
    case Property::microphonePermission:
        showPermissions();
        break;
    case Property::progress:
        status_->setProgress(values.progress, texts_);
        break;
    case Property::errorMessage: // shown in an alert
        break;
    }
}

void ContentView::showMeters() {
    const auto& values = model_.values();
    status_->setLevels(values.systemAudioLevel, values.microphoneLevel);
    status_->setConditions(values.systemAudioCondition, values.microphoneCondition, texts_);
}

void ContentView::showLastRecording() {
    const auto& recording = model_.values().lastRecordingURL;
    const bool isNew = recording && completed_->isHidden();
    completed_->setVisible(recording.has_value());
    completed_->setRecording(recording.value_or(""));
    if (isNew) {
        column_->bringIntoView(completed_);
    }
}

void ContentView::showState() {
    const auto& state = model_.values().state;
    using enum RecordingState::Case;
    if (const auto which = state.which();
        which == preparing || which == recording || which == failed) {
        column_->bringIntoView(status_);
    }
    status_->setState(state, QString::fromStdString(model_.statusText()), texts_);
    record_->setStops(state.which() == recording);
    record_->setToolTip(withShortcut(record_->text(), recordKeys));
}

void ContentView::showSources() {
    const auto& values = model_.values();
    systemAudio_->setOn(values.captureSystemAudio);
    microphone_->setOn(values.captureMicrophone);
    systemVolume_->setUsable(values.captureSystemAudio);
    microphoneVolume_->setUsable(values.captureMicrophone);
    input_->setVisible(values.captureMicrophone);
    input_->setMicrophones(values.microphones, values.selectedMicrophoneID,
                           values.isSurveyed ? QString::fromStdString(texts_.noMicrophone())
                                             : QString());
    input_->setEnabled(!isBusy(values.state.which()) && !values.microphones.empty());
    record_->setUsable(values.state.which() == RecordingState::Case::recording ||
                       model_.canStart());
}

void ContentView::showPermissions() {
    using Remedy = PermissionRow::Remedy;
    using enum AuthorizationStatus;
    const auto& values = model_.values();
    screenPermission_->setGranted(values.hasScreenPermission, Remedy::settings);
    const auto status = values.microphonePermission;
    const auto remedy = status == notDetermined ? Remedy::note : Remedy::settings;
    microphonePermission_->setGranted(status == authorized,
                                      values.isSurveyed ? remedy : Remedy::none);
}

} // namespace vantoro
