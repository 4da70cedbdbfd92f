// SPDX-License-Identifier: MIT
// What the server answers: the page, and what it asks for.
#pragma once
#include <string>

#include "halyrigctl/serve/signalk_tree.h"
#include "halyrigctl/serve/target.h"
#include "streams/web_server.h"

namespace twr {

class Site : public WebSite {
public:
    // `name`: in place of the boat's; empty for hers.
    Site(System& system, Lookout& lookout, std::string name)
        : system_(system), lookout_(lookout), name_(std::move(name)), signalK_(lookout) {}

    // Takes what the lookout has found.
    void Take() { signalK_.Take(); }

    WebAnswer Answer(const WebRequest& request) override;
    std::unique_ptr<WebTalk> Talk(const WebRequest& request) override;

private:
    WebAnswer Channels(const Target& target);
    WebAnswer ExplainOne(const Target& target);
    WebAnswer CheckSetup(const Target& target);
    WebAnswer Boats(const Target& target);
    WebAnswer HistoryOf(const Target& target);
    WebAnswer SignalK(std::string_view path, const WebRequest& request);

    System& system_;
    Lookout& lookout_;
    const std::string name_;
    SignalKTree signalK_;
    std::string check_;       // as last found
    double checkedAt_ = 0.0;  // days
};

// What is asked for can't be answered, and why.
WebAnswer NoAnswer(int status, std::string_view why);

}  // namespace twr
