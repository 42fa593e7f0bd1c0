// Compiles every installed header of the editor.
#include "all_editor_headers.hpp"

#include <iostream>

int main() { std::cout << corvanta::CorvantaSdkVideoEditorViewModel::staticMetaObject.className() << '\n'; }
