#pragma once
/// Controllers: what moves a node.

#include "matrix3.h"
#include "ref.h"

class ClassDesc;

enum GetSetMethod { CTRL_RELATIVE, CTRL_ABSOLUTE };

class Control : public ReferenceTarget {
 public:
    /// @param val    a `Matrix3`. With CTRL_RELATIVE it comes with the frame of the node's parent, and goes with that of the
    /// node
    /// @param valid  narrowed to the span for which the answer holds
    virtual void GetValue(TimeValue t, void* val, Interval& valid, GetSetMethod method = CTRL_ABSOLUTE) = 0;
    /// @param val  a `SetXFormPacket`
    virtual void SetValue(TimeValue t, void* val, int commit = 1, GetSetMethod method = CTRL_ABSOLUTE) = 0;
    virtual void Copy(Control* from) = 0;
    virtual BOOL IsLeaf() { return TRUE; }
    virtual int IsKeyable() { return 1; }
};

/// How a node is to be moved. The host knows several commands; this stand-in only ever sets a whole frame.
class SetXFormPacket {
 public:
    Matrix3 tmParent;  // world frame of the parent
    Matrix3 tmAxis;    // the frame to take, world
    SetXFormPacket(const Matrix3& mat, const Matrix3& parent) : tmParent(parent), tmAxis(mat) {}
};

/// The controller that a new node gets: position, rotation and scale.
Control* NewDefaultMatrix3Controller();
ClassDesc* GetDefaultController(SClass_ID sclass);
