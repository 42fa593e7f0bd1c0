#pragma once

/// Makes the end of what the module stops for, such as a store that can't be opened or a disk that fills up
/// while sound is cleaned, a failure among others: the module's words stand on standard error, no core is
/// dumped, and the exit status is that of a failure. A JSON document goes to `resultDescriptor`, unless that
/// is negative.
void endAtFatalErrors(int resultDescriptor);
