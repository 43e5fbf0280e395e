/*
 * The service's logging convention. Before every line the level property is read afresh into a
 * cleared PROPERTY_VALUE_MAX buffer, so a change takes effect on the next line without a
 * restart. Its first character gates the line: "D" debug and up, "I" information and up, "W"
 * also warnings where a caller uses them; error lines are always written.
 */
#pragma once

namespace vesk::log {

inline constexpr char kLevelProperty[] = "persist.vesk.device.log.level";

// The first character of the level property (default "E"), read afresh.
char currentLevel();

// Each reads the level and writes one __android_log_print line when it allows.
void debug(const char* tag, const char* format, ...) __attribute__((format(printf, 2, 3)));
void info(const char* tag, const char* format, ...) __attribute__((format(printf, 2, 3)));
void warn(const char* tag, const char* format, ...) __attribute__((format(printf, 2, 3)));
void error(const char* tag, const char* format, ...) __attribute__((format(printf, 2, 3)));

}  // namespace vesk::log
