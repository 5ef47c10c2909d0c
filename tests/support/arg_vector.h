// A writable argument vector, "DC" followed by the given arguments, for
// calling the option readers the way main does.
#pragma once

#include <string>
#include <vector>

class ArgVector {
  public:
    ArgVector(std::vector<std::string> args) : strings_(std::move(args)) {
        strings_.insert(strings_.begin(), "DC");
        for (std::string& s : strings_) pointers_.push_back(s.data());
        pointers_.push_back(nullptr);
    }
    ArgVector(const ArgVector&) = delete;
    ArgVector& operator=(const ArgVector&) = delete;

    int argc() const { return static_cast<int>(strings_.size()); }
    char** argv() { return pointers_.data(); }

  private:
    std::vector<std::string> strings_;
    std::vector<char*> pointers_;
};
