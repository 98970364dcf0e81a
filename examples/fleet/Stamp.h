// How the program writes a time: by one template, which --format sets.
#pragma once

#include <ortha/ortha3/Time.h>

#include <cstddef>
#include <string>

namespace Fleet {

constexpr const char* defaultStampTemplate = "yyyy-MM-dd HH:mm:ss";
constexpr std::size_t maxStampTemplate = 64;

/// What is wrong with a template; empty if nothing is.
std::string checkStampTemplate(const std::string& text);

/// The time by the template of CTime::setFormatString(), which checkStampTemplate() has passed.
std::string stamp(const General::Ortha::CTime& time);
/// The characters in the longest stamp of that template.
int stampWidth();

}  // namespace Fleet
