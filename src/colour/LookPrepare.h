#pragma once
// What the processor path of a look needs beside its 3D table.
struct LookLut;

namespace kestrelink::colour {

// Corner weights and cell tables for the look's size.
void BuildCornerWeights(LookLut& look);

// Fills table3D (allocated on first use) with the evaluation of every 8-bit
// colour, in parallel over the team: entry (o * 256 + m) * 256 + i holds
// components 2, 1, 0 at a = i, b = m, c = o.
void FillLookTable(LookLut& look);

}  // namespace kestrelink::colour
