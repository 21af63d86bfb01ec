#pragma once

// NSLog(@"%s") with UTF-8 text.
void WriteConsoleLine(const char* text);
