// The "routines" module: POST /api/app/routines/<action>.

module routines {
  createTriggerAction;
  hookUrlAction;
  list;
  revealTriggerSecretAction;
  runTriggerEventAction;
  setTriggerSecretAction;
  trigger;
  triggerAction;
  updateTriggerAction;
}
