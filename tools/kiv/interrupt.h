/// Ctrl-C as a question that a loop can ask. The second Ctrl-C ends the program at once.
#pragma once

/// From now on Ctrl-C (and a request to terminate) is only remembered.
void catch_interrupts();
bool is_interrupted();
