// Tells the system's tracing what the driver does, for tools that look from outside. Without one,
// each call costs no more than a question. Codes, numbers and times only: neither titles nor names.
//
// Intervals of one kind do not nest. Main thread.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

// The parts of a tick that have an interval of their own.
enum class TickStep { language, profile, clip, timecode, status };

void SignpostRequestBegins(SInt32 code, const unsigned char* body, unsigned long length);

// `result` is one word. `reply` may be null: its first numbers, and their count, are told.
// `exchanges` are the accessibility calls that were made.
void SignpostRequestEnds(SInt32 code, const char* result, CFDataRef reply, unsigned long exchanges);

void SignpostTickBegins();
void SignpostTickEnds(unsigned long exchanges);
void SignpostStepBegins(TickStep step);
void SignpostStepEnds(TickStep step, unsigned long exchanges);

// A message to the companion; `status` as for SendMessage.
void SignpostMessageBegins(SInt32 code, unsigned long long length);
void SignpostMessageEnds(SInt32 code, SInt32 status);
