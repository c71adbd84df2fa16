// orlix: measure micrographs from the command line.
#include "console.hpp"
#include "interruption.hpp"
#include "program.hpp"

#include <orlix/client.hpp>

#include <iostream>

int main(int argc, char** argv) {
    const tool::Interruption interruption;
    const orlix::Apartment apartment;
    tool::PrepareConsole();
    const int code = tool::Run(tool::Arguments(argc, argv));
    std::cout.flush();
    if (code == tool::kInterrupted) tool::Interruption::Obey();
    return std::cout ? code : tool::kFailed;  // a full disk is not success
}
