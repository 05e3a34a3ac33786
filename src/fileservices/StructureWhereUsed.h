// Structure and where-used: how the relation answers land in the caller's maps.
#pragma once

#include "VANTO.h"
#include "protocol/commands/MCADCommands.h"

namespace vanto::fileservices {

using Corvane::CommandIO::DataManagement::MCAD::CorvaneGetChildrenOutput;
using Corvane::CommandIO::DataManagement::MCAD::CorvaneQueryPrimaryObjectsOutput;

// Inserts (child path, relation URN) for each child relation of the answer's first parent. A
// child's path is the first of its paths with a CAD extension; a child without one takes the key
// of the child before it. A key already in the map keeps its value.
void AddChildRelations(const CorvaneGetChildrenOutput& output, RelationMap& children);

// Inserts (related document path, relation URN) for each relation of the answer. A related
// document's path is its last path; a relation without a related document takes the key of the
// relation before it within the same query. A key already in the map keeps its value.
void AddWhereUsedRelations(const CorvaneQueryPrimaryObjectsOutput& output, RelationMap& whereUsed);

// The relation URNs of the children that the parent's map holds, in the order of `childPaths`,
// followed by one empty text per child that it does not hold.
Core::DynamicArray<Core::TevString> RelationUrnsOf(const PathList& childPaths,
                                                   const RelationMap& children);

} // namespace vanto::fileservices
