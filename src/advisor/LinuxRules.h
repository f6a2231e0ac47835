#pragma once

#include "advisor/Advisor.h"
#include "advisor/Verdict.h"

#include <optional>
#include <string>

// What a Linux machine keeps that can go: the XDG cache folder's contents, sandboxed apps'
// caches, package caches, toolchains and containers in the home folder, Steam's shader cache and
// the Trash folders of other file systems. None of these paths exist on macOS.
class LinuxRules
{
public:
    explicit LinuxRules(const Advisor::Context &context);

    [[nodiscard]] std::optional<Verdict> folder(const std::string &name, const std::string &path,
                                                const std::string &parentPath) const;

private:
    std::string m_home;
    std::string m_cache; // empty when the variable would take in the home folder itself
    std::string m_flatpaks;
    std::string m_snaps;
};
