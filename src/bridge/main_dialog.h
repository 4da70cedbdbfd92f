// SPDX-License-Identifier: MIT
// The main dialog: the settings in view, the library and the mapping behind them, and the tick that carries values both ways.
#pragma once
#include <cstdint>
#include <string>
#include <vector>

#include "bridge/instrument_pass.h"
#include "bridge/remote_pass.h"
#include "config/bridge_settings.h"
#include "core/core.h"
#include "deckman/deckman_library.h"
#include "deckman/variable_file.h"
#include "mapping/mapping_rows.h"
#include "platform/system.h"
#include "status/bridge_status.h"

namespace twr {

// Remarks on files that could not be read to their end. What else the readers pass over is not told.
class UnreadFiles final : public Findings {
public:
    explicit UnreadFiles(CoreServices& services) : desktop_(services.desktop) { services.findings = this; }
    void Add(Finding finding) override;

private:
    Desktop& desktop_;
};

class CHalyrig32Dlg : public Dialog {
public:
    // Attaches to the record.
    explicit CHalyrig32Dlg(System& system);

    // The record asks all programs of the suite to close.
    bool QuitRequested() const { return core_.QuitRequested(); }

    // Deckman's library may run a loop of messages while it is called. Events that arrive by that wait until the work that called
    // it has ended, each once; ticks are left out. So nothing is freed that is in use.
    void OnInit(DialogWindow& window) override;
    void OnTimer(std::uintptr_t id) override;
    void OnTextChange(int control) override;
    void OnButton(int control) override;
    void OnMenu(int command) override;
    void OnOk() override;
    void OnCancel() override;
    void OnDestroy() override;

private:
    enum class Event { kFolderChange, kImport, kAbout, kOk, kCancel };

    // Handles the event, or lets it wait.
    void Raise(Event event);
    void Handle(Event event);

    // Runs `work`, which may call the library, then what has come meanwhile.
    template <class Work>
    void Undisturbed(Work work);

    void OnFolderChange();
    void PrepareCrashReports();
    void LoadDfwLibrary();
    void UnloadDfwLibrary();

    // The two files behind the mapping: Deckman's variables, then the mapping file.
    void ReloadMapping();
    void FindVariableFile();
    void LoadMapping();
    void NoteMapping();  // for other processes
    std::u16string MappingPath();

    // Reloads the mapping if a record that was still being filled has come to another data folder than it was loaded from.
    void FollowDataFolder();

    // Replaces the mapping by that of an older installation, after a question (import_legacy.cc).
    void OnImportLegacy();
    bool ImportLegacyVars();  // false if no line found its variable
    void ImportLegacyRemotes();

    // Looks once a second, so it is to be asked at each tick.
    bool RecordIsLost();

    void RunPasses();
    void ReadInstruments() { instruments_.Run(library_, mapping_.varRows, catalogue_.timerVariableId, settings_); }
    void WriteRemotes() { remotes_.Run(library_, mapping_.remoteRows, settings_); }

    // Copies the current state of the boxes into settings_.
    void ReadBoxes();

    // The ways out, by the default button and by any other.
    void LeaveBySaving();
    void Leave();
    bool ConfirmExit();
    void SaveSettings();
    void End(DialogResult result);

    CoreServices services_;
    UnreadFiles unread_{services_};
    Executable& executable_;
    CrashReports& crashes_;
    DialogWindow* window_ = nullptr;  // while the dialog is open
    std::uintptr_t timerId_ = 0;      // 0: no timer was started
    int sinceLook_ = 0;               // ticks: after the record
    bool working_ = false;            // Deckman's library may be running
    bool ended_ = false, destroyed_ = false;
    std::vector<Event> waiting_;  // in the order in which they came
    DeckmanLibrary library_;
    CCore core_;
    bool followsDataFolder_;  // until the record has been seen filled
    Settings settings_;       // the folder trimmed
    DeckmanCatalogue catalogue_;
    Mapping mapping_;
    std::u16string mappingFolder_;  // the data folder that mapping_ was loaded from
    BridgeStatusWriter status_;
    InstrumentPass instruments_;
    RemotePass remotes_;
};

}  // namespace twr
