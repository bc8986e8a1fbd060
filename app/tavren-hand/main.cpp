// tavren-hand: names Texas Hold'em hands from the command line.
//
// Reads lines of whitespace-separated card numbers (two to seven of 1..52; 1..13 spades,
// 14..26 clubs, 27..39 diamonds, 40..52 hearts, each ace first) from standard input and prints,
// per line, the description, a tab and the comparable hand value in decimal. A line that cannot
// be read gets an error on standard error and the next line is read; the exit status is 1 when any
// line failed. Blank lines are skipped.
#include <iostream>
#include <string>

#include "holdem/HandDescription.h"
#include "holdem/KnownCards.h"

namespace {

bool IsBlankLine(const std::string& line) {
    return line.find_first_not_of(" \t\r\n\v\f") == std::string::npos;
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc > 1) {
        std::cerr << "usage: " << argv[0]
                  << " < hands.txt\n"
                     "  each line: 2 to 7 card numbers 1..52, e.g. \"1 14 27 40 13\"\n"
                     "  prints: description<TAB>value (a higher value wins)\n";
        return 2;
    }
    std::ios::sync_with_stdio(false);
    bool anyFailed = false;
    std::string line;
    long lineNumber = 0;
    while (std::getline(std::cin, line)) {
        ++lineNumber;
        if (IsBlankLine(line)) {
            continue;
        }
        std::string error;
        const auto cards = tavren::holdem::KnownCards::parse(line, &error);
        if (!cards) {
            std::cout.flush();
            std::cerr << "tavren-hand: line " << lineNumber << ": " << error << '\n';
            anyFailed = true;
            continue;
        }
        const tavren::holdem::ShownHand hand = tavren::holdem::BestHand(*cards);
        std::cout << hand.description << '\t' << hand.value.bits() << '\n';
    }
    return anyFailed ? 1 : 0;
}
