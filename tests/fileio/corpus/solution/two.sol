<?xml version = "1.0" standalone="yes"?>
<TOVIKSolutions>
 <TOVIKSolution version="1.2">
  <header
    problemName="p"
    solutionName="m1"
    MIPStartEffortLevel="2"
    writeLevel="1"/>
  <linearConstraints>
   <constraint name="r0" index="0" status="LL" slack="0" dual="1"/>
  </linearConstraints>
  <variables>
   <variable name="x0" index="0" status="BS" value="2" reducedCost="0"/>
   <variable name="&quot;x&amp;1" index="1" value="1e3"/>
  </variables>
 </TOVIKSolution>
 <TOVIKSolution version="1.2"><variables><variable index="2" value="5"/></variables></TOVIKSolution>
</TOVIKSolutions>
