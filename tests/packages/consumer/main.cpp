// Compiles every installed header of the module, and frees a clip's sound from noise: consumer NOISY CLEANED
#include "all_headers.hpp"

#include <iostream>

using namespace corvanta;

int main(int, char** arguments) {
    SharedCorvantaSdkCommonKt::sdk_common().setAuth(std::make_shared<SharedCorvantaSdkFixedAuth>(true));
    const CorvantaSdkVideoFile noisy(URL::fromFilePath(arguments[1]));
    const auto cleaned = CorvantaSdkVideoFileDescriptor::custom(arguments[2]);
    std::cout << runBlocking(CorvantaSdkVideo->engine()->clearNoiseForFile(noisy, cleaned)).fileURL.path()
              << '\n';
}
