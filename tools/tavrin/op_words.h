// Words of the image commands' options: a list of numbers "1,2.5,3", and an operation with an
// optional constant "add:5".
#pragma once

#include <string>
#include <vector>

// Exactly `count` numbers separated by commas; a UsageError naming `option` otherwise.
std::vector<double> ParseReals(const std::string& text, size_t count, const char* option);

// "NAME" or "NAME:VALUE" split at the colon; `value` is empty without one.
struct OpWord {
    std::string name;
    std::string value;
};
OpWord SplitOpWord(const std::string& text);

// An operation of a table: its number and whether it takes a constant. A UsageError naming
// the choices when `word` is not one of them, when a constant is missing or given to an
// operation without one, or when the constant is not a number.
struct OpChoice {
    const char* name;
    int op;
    bool constant;
};
struct ChosenOp {
    int op;
    std::string constant;   // the constant as written, empty without one
};
ChosenOp ChooseOp(const std::string& word, const std::vector<OpChoice>& choices, const char* option);
