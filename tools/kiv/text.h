/// Small text work: what a camera says is made fit for a terminal, numbers and tables are made fit for a reader.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Texts come from devices: control characters (a terminal would obey them) become "?", everything else stays.
std::string printable(std::string_view text);

/// The text, filled with blanks to a width counted in characters.
std::string padded(std::string_view text, std::size_t width);
std::size_t character_count(std::string_view text);

/// A number as short as it can be said without losing what matters: 5000, 0.5, 1e+07.
std::string short_number(double value);
/// A number with so many digits behind the point.
std::string fixed_number(double value, int digits);

/// Words set in lines of at most `width` characters. Words are never broken.
std::vector<std::string> wrapped(const std::vector<std::string>& words, std::string_view separator, std::size_t width);

/// The candidates that a person probably meant, nearest first, at most three.
std::vector<std::string> similar_names(std::string_view wanted, const std::vector<std::string>& candidates);

std::string joined(const std::vector<std::string>& words, std::string_view separator);

/// "2026-03-01T12:34:56.789Z"
std::string time_text(std::chrono::system_clock::time_point time);

/// "1 frame", "2 frames"
std::string counted(unsigned long long count, std::string_view noun);
