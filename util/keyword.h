// Keyword tables: options whose value may be given either as a number or as
// one of a fixed set of names, each standing for a number.
#pragma once

// One entry of a keyword table; a table ends with an entry whose name is
// null or empty.
struct KeyValue {
    const char* name;
    float value;
};

// Reads valueText for the option: a text that does not begin with a letter
// is read as a real (1); a name found in the table without regard to case
// gives its value (0); otherwise -1 after listing the valid names. A missing
// or unreadable value gives -1 after a message. value is written on 0 and 1.
int getValByName(const char* option, const char* valueText, const KeyValue* table, float* value);
// Number of entries with the value; name (1024 bytes) receives the last of
// them, or an empty text when there is none.
int getNameByVal(char* name, const KeyValue* table, float value);
// The first name with the value, or an empty text.
const char* getNameStrByVal(const KeyValue* table, float value);

// An option's value through getValByName: its result, or 2 when the option
// is absent (value untouched). Option and value are marked as used.
int fltStrArgD(int argc, char** argv, const char* option, const KeyValue* table, float* value);
int intStrArgD(int argc, char** argv, const char* option, const KeyValue* table, int* value);
// The option's value matched against the table's names: 0 with the table's
// own spelling copied into value (1024 bytes), 2 when the option is absent,
// -1 after a message when the value is missing or no name matches.
int strStrArgD(int argc, char** argv, const char* option, const KeyValue* table, char* value);
