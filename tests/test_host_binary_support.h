// A fixture for the tests that run the host program as a user does: the binary in the test's
// own home and data directories, its output captured in files there.
#pragma once

#include "support/test_host.h"

#include <sys/wait.h>

#include <cstdlib>
#include <string>

class HostBinaryTest : public LibraryTest {
protected:
    // Exit status of the binary with the arguments (quoted for the shell by the caller where
    // needed), run in the data directory; its standard output and errors go to stdout.txt and
    // stderr.txt there, its standard input is this test program's own. -1 when it did not exit.
    int RunHost(const std::string& arguments) const { return Status(Command(arguments) + " > stdout.txt 2> stderr.txt"); }
    // The same with `input` as its standard input (through stdin.txt in the data directory).
    int RunHostWithInput(const std::string& arguments, const std::string& input) const
    {
        WriteFileBytes(data + "stdin.txt", input);
        return Status(Command(arguments) + " < stdin.txt > stdout.txt 2> stderr.txt");
    }

private:
    std::string Command(const std::string& arguments) const
    {
        return "cd '" + data + "' && TAVRIN_HOME='" + home + "' TAVRIN_DATA='" + data + "' '" + TAVRIN_HOST_BINARY +
               "' " + arguments;
    }
    static int Status(const std::string& command)
    {
        const int raw = std::system(command.c_str());
        return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    }
};
