// Compiles every installed header of the editor and the README's examples of it.
#include "all_editor_headers.hpp"

#include <QQuickWindow>
#include <iostream>

using namespace corvanta;
#include "editor_readme.hpp"

int main() { std::cout << corvanta::CorvantaSdkVideoEditorViewModel::staticMetaObject.className() << '\n'; }
