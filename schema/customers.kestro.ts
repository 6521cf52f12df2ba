// The "customers" module: POST /api/app/customers/<action>.

module customers {
  acceptFeedbackAction;
  addFeedbackAction;
  createRoadmapItemAction;
  createSegmentAction;
  customer;
  deleteFeedbackAction;
  deleteRoadmapItemAction;
  deleteSegmentAction;
  feedback;
  feedbackTaskAction;
  linkFeedbackAction;
  list;
  pmf;
  reviewFeedbackAction;
  roadmap;
  roadmapTaskAction;
  seenCustomerLineAction;
  segments;
  settings;
  startPmfSurveyAction;
  syncCustomersAction;
  updateCustomerSettingsAction;
  updateRoadmapItemAction;
}
