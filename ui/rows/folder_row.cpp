// SPDX-License-Identifier: GPL-3.0-or-later

#include "ui/rows/folder_row.h"

#include <QtCore/QFile>
#include <QtWidgets/QHBoxLayout>

#include "ui/style/decorations.h"
#include "ui/style/metrics.h"

namespace vantoro {

namespace {

constexpr int symbolSize = 18;
constexpr int symbolPlace = 20;
constexpr int spacing = 6;

} // namespace

FolderRow::FolderRow(QWidget* parent)
    : QWidget(parent),
      path_(new ElidedLabel(Tone::primary, font(), this)),
      change_(new QPushButton(this)),
      open_(new SymbolButton(Symbol::open, this)) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(symbolMiddle - symbolPlace / 2, 0, ringMargin, 0);
    row->setSpacing(spacing);
    row->addWidget(new SymbolLabel(Symbol::folder, Tone::secondary, symbolSize, symbolPlace, this));
    row->addSpacing(textStart - symbolMiddle - symbolPlace / 2 - spacing);
    row->addWidget(path_, 1);
    row->addWidget(change_);
    row->addWidget(open_);
    change_->setAutoDefault(true);
    connect(change_, &QPushButton::clicked, this, &FolderRow::changeWanted);
    connect(open_, &QToolButton::clicked, this, &FolderRow::openWanted);
}

void FolderRow::setTexts(const QString& change, const QString& open) {
    change_->setText(change);
    open_->setHelp(open);
}

void FolderRow::setFolder(const std::filesystem::path& folder) {
    path_->setText(QFile::decodeName(folder.c_str()));
}

} // namespace vantoro
