// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include <QtWidgets/QWidget>

#include "control/recording_view_model.h"
#include "l10n/l10n.h"
#include "ui/rows/folder_row.h"
#include "ui/rows/input_row.h"
#include "ui/rows/permission_row.h"
#include "ui/rows/record_button.h"
#include "ui/rows/source_row.h"
#include "ui/rows/volume_row.h"
#include "ui/window/card.h"
#include "ui/window/column.h"
#include "ui/window/completed_panel.h"
#include "ui/window/status_panel.h"

namespace vantoro {

/// The window's content: shows the view model's properties and forwards the user's actions. Main
/// thread; the view model and the preferences must outlive it.
class ContentView final : public QWidget {
    Q_OBJECT

public:
    ContentView(RecordingViewModel& model, const Preferences& preferences,
                QWidget* parent = nullptr);

    /// Shows everything, in the current language.
    void showAll();

protected:
    void changeEvent(QEvent* event) override;

private:
    using Property = RecordingProperties::Property;

    QWidget* makeHeader();
    QWidget* fillColumn();
    QWidget* makeBar();
    void connectUser();
    void showTexts();
    void showProperty(Property property);
    void showState();
    void showMeters();
    void showLastRecording();
    void showSources();
    void showPermissions();

    QString text(L10n::Key key) const;

    RecordingViewModel& model_;
    L10n texts_;
    Column* column_;
    SymbolButton* refresh_;
    StatusPanel* status_;
    Card* sources_;
    SourceRow* systemAudio_;
    SourceRow* microphone_;
    InputRow* input_;
    PermissionRow* screenPermission_;
    PermissionRow* microphonePermission_;
    Card* recording_;
    VolumeRow* systemVolume_;
    VolumeRow* microphoneVolume_;
    FolderRow* folder_;
    CompletedPanel* completed_;
    RecordButton* record_;
};

} // namespace vantoro
