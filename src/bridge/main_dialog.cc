// SPDX-License-Identifier: MIT
#include "bridge/main_dialog.h"

#include <algorithm>
#include <utility>

#include "base/wide_text.h"
#include "bridge/controls.h"
#include "core/days.h"
#include "mapping/mapping_file.h"
#include "platform/files.h"

namespace twr {
namespace {

constexpr std::uintptr_t kTimerId = 1;
constexpr unsigned kTickMs = 100;
constexpr int kTicksBetweenLooks = 10;

struct BoxOfSetting {
    int control;
    bool Settings::*setting;
};
constexpr BoxOfSetting kBoxes[] = {
    {kNamesCheck, &Settings::sendNames},
    {kTrueCheck, &Settings::degreesTrue},
    {kDepthCheck, &Settings::depthInFeet},
    {kTimerCheck, &Settings::useTimer},
};

class LibraryCall {
public:
    explicit LibraryCall(CrashReports& crashes) : crashes_(crashes) { crashes_.Calling(true); }
    ~LibraryCall() { crashes_.Calling(false); }
    LibraryCall(const LibraryCall&) = delete;
    LibraryCall& operator=(const LibraryCall&) = delete;

private:
    CrashReports& crashes_;
};

}  // namespace

void UnreadFiles::Add(Finding finding) {
    if (finding.flaw != Flaw::kReadFailed) return;
    const std::u16string line = finding.line > 0 ? u":" + FromBytes(std::to_string(finding.line)) : u"";
    desktop_.Remark(finding.path + line + u": reading it fails (" + finding.text +
                        u"), and nothing from there on is used; see whether the disk is sound and this user may read the file",
                    kProgramName);
}

CHalyrig32Dlg::CHalyrig32Dlg(System& system)
    : services_(system.Core()),
      executable_(system.GetExecutable()),
      crashes_(system.GetCrashReports()),
      library_(system.GetLibraries()),
      core_(services_),
      followsDataFolder_(core_.IsBeingFilled()),
      status_(system.GetStatusBoard(), services_.clock),
      instruments_(core_, services_.clock, &status_),
      remotes_(core_) {}

void CHalyrig32Dlg::OnInit(DialogWindow& window) {
    window_ = &window;
    window.AddMenuItem(kAboutCommand, kAboutItem);
    settings_ = ReadSettings(services_.registry);
    for (const BoxOfSetting& box : kBoxes) window.SetChecked(box.control, settings_.*box.setting);
    settings_.dfwFolder = Trimmed(std::u16string_view(settings_.dfwFolder));
    window.SetText(kFolderField, settings_.dfwFolder);  // raises OnFolderChange, which loads library and mapping
    if (timerId_ == 0) timerId_ = window.StartTimer(kTimerId, kTickMs);
}

void CHalyrig32Dlg::OnTimer(std::uintptr_t id) {
    if (core_.QuitRequested()) {
        window_->PostClose();
        return;
    }
    if (id != timerId_ || !core_.View() || working_) return;
    if (RecordIsLost()) return End(DialogResult::kCancel);
    status_.Ticked();
    FollowDataFolder();
    if (!library_) return;
    ReadBoxes();
    status_.BoxesInForce(settings_);
    Undisturbed([this] { RunPasses(); });
}

// A system that ends a user's last session may remove the record's name. No other program could read what is published then, nor
// ask the bridge to close. So it ends, without a question that perhaps nobody is there to answer.
bool CHalyrig32Dlg::RecordIsLost() {
    if (++sinceLook_ < kTicksBetweenLooks) return false;
    sinceLook_ = 0;
    return core_.RecordIsLost();
}

void CHalyrig32Dlg::RunPasses() {
    const LibraryCall call(crashes_);
    status_.PassBegins(UtcNowDays(services_.clock));
    ReadInstruments();
    WriteRemotes();  // sees what has just been published
    status_.PassEnds(UtcNowDays(services_.clock));
}

void CHalyrig32Dlg::OnTextChange(int control) {
    if (control == kFolderField) Raise(Event::kFolderChange);
}

void CHalyrig32Dlg::OnButton(int control) {
    if (control == kImportButton) Raise(Event::kImport);
}

void CHalyrig32Dlg::OnMenu(int command) {
    if (command == kAboutCommand) Raise(Event::kAbout);
}

void CHalyrig32Dlg::OnOk() { Raise(Event::kOk); }

void CHalyrig32Dlg::OnCancel() { Raise(Event::kCancel); }

void CHalyrig32Dlg::Raise(Event event) {
    if (!working_) {
        Handle(event);
    } else if (std::ranges::find(waiting_, event) == waiting_.end()) {
        waiting_.push_back(event);
    }
}

void CHalyrig32Dlg::Handle(Event event) {
    switch (event) {
        case Event::kFolderChange:
            return Undisturbed([this] { OnFolderChange(); });
        case Event::kImport:
            return OnImportLegacy();
        case Event::kAbout:
            return services_.desktop.ShowAbout(kAboutTemplate, AboutText(executable_));
        case Event::kOk:
            return LeaveBySaving();
        case Event::kCancel:
            return Leave();
    }
}

template <class Work>
void CHalyrig32Dlg::Undisturbed(Work work) {
    working_ = true;
    work();
    working_ = false;
    if (destroyed_) return UnloadDfwLibrary();
    // A tick during a box of one of them handles what came during that tick, not those behind the box.
    for (const Event event : std::exchange(waiting_, {})) {
        if (!ended_) Handle(event);
    }
}

void CHalyrig32Dlg::OnFolderChange() {
    settings_.dfwFolder = Trimmed(std::u16string_view(window_->Text(kFolderField)));
    PrepareCrashReports();
    LoadDfwLibrary();
    ReloadMapping();
}

void CHalyrig32Dlg::PrepareCrashReports() {
    if (!core_.View()) return;
    crashes_.Prepare(JoinPath(JoinPath(core_.GetDataFolder(u""), u"log_system"), u"halyrig_crash.log"),
                     u"while it called Deckman's library " + DeckmanLibrary::PathIn(settings_.dfwFolder) +
                         u"; see whether Deckman itself runs, and if this comes again, install it again");
}

void CHalyrig32Dlg::LoadDfwLibrary() {
    if (library_) UnloadDfwLibrary();
    const LibraryCall call(crashes_);
    library_.Load(settings_.dfwFolder);
    status_.LibraryLoaded(settings_.dfwFolder, {.loaded = bool(library_), .reads = library_.fnRead != nullptr});
}

void CHalyrig32Dlg::UnloadDfwLibrary() {
    const LibraryCall call(crashes_);
    library_.Unload();
    catalogue_.rows.clear();
}

void CHalyrig32Dlg::ReloadMapping() {
    FindVariableFile();
    LoadMapping();
}

void CHalyrig32Dlg::FindVariableFile() {
    catalogue_ = twr::FindVariableFile(services_.files, settings_.dfwFolder, JoinPath(core_.GetDataFolder(u""), u"jvars.twr"),
                                       services_.findings);
    instruments_.ForgetTimer();
}

void CHalyrig32Dlg::LoadMapping() {
    mappingFolder_ = core_.GetDataFolder(u"");  // read first: a change meanwhile is noticed on the next tick
    mapping_ = twr::LoadMapping(services_.xml, MappingPath(), catalogue_.rows, services_.findings);
    NoteMapping();
    PrepareCrashReports();  // for the new folder, and once more after the library was loaded
}

void CHalyrig32Dlg::NoteMapping() {
    std::vector<MappedLine> lines;
    for (const MappingVar& row : mapping_.varRows) lines.push_back({row.channel, row.boat, row.dfwId});
    status_.MappingLoaded({.variables = static_cast<std::int32_t>(catalogue_.rows.size()),
                           .varRows = static_cast<std::int32_t>(mapping_.varRows.size()),
                           .readAt = UtcNowDays(services_.clock)},
                          lines);
}

// A bridge that joins a record still being filled finds no data folder, or the default, and loads from there; its creator names the
// right one a moment later.
void CHalyrig32Dlg::FollowDataFolder() {
    if (!followsDataFolder_) return;
    followsDataFolder_ = core_.IsBeingFilled();  // asked first, so that the last look is at a filled record
    if (core_.GetDataFolder(u"") != mappingFolder_) ReloadMapping();
}

std::u16string CHalyrig32Dlg::MappingPath() { return core_.GetDataFile(u"instruments", u"halyrig.xml"); }

// The Close button keeps the settings of the run. Esc and closing the window discard them, unless another program asked it to
// close.
void CHalyrig32Dlg::LeaveBySaving() {
    if (!core_.QuitRequested() && !ConfirmExit()) return;
    SaveSettings();
    End(DialogResult::kOk);
}

void CHalyrig32Dlg::Leave() {
    if (core_.QuitRequested()) {
        LeaveBySaving();
    } else if (ConfirmExit()) {
        End(DialogResult::kCancel);
    }
}

void CHalyrig32Dlg::End(DialogResult result) {
    ended_ = true;
    window_->End(result);
}

bool CHalyrig32Dlg::ConfirmExit() {
    return services_.desktop.ShowBox(u"Exit Halyrig?", kProgramName, BoxButtons::kYesNo, BoxIcon::kQuestion) == BoxAnswer::kYes;
}

void CHalyrig32Dlg::ReadBoxes() {
    for (const BoxOfSetting& box : kBoxes) settings_.*box.setting = window_->Checked(box.control);
}

void CHalyrig32Dlg::SaveSettings() {
    ReadBoxes();
    WriteSettings(services_.registry, settings_);
}

void CHalyrig32Dlg::OnDestroy() {
    if (timerId_ != 0) window_->StopTimer(timerId_);
    ended_ = destroyed_ = true;
    if (!working_) UnloadDfwLibrary();
}

}  // namespace twr
