#pragma once

#include <functional>
#include <string>

/// The text of a settings file; empty if there is none that can be read.
std::string ReadSettingsFile(const std::string& path);

/// Lets `edit` change the file's text and puts the result in the file's place in one step. Nothing is
/// written if the text stays the same, or if there is a file that can't be read: it may hold values that
/// must not be lost.
void EditSettingsFile(const std::string& path, const std::function<std::string(const std::string&)>& edit);
