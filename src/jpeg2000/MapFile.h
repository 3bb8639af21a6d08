#pragma once
// A class with a virtual destructor alone; the encoding path has no use for
// it, and what it is to hold stands open.
class MapFile {
 public:
  virtual ~MapFile() = default;
};
