var counters = new ActiveXObject("OrvoSuite.Counters");
counters.Count("orders", "paid");
counters.Count("orders", "paid");
counters.Count("orders", "cancelled");
for (var rows = counters.Rows(); !rows.EOF; rows.MoveNext())
    WScript.Echo(rows("Name").Value + ", " + rows("Kind").Value + ": " + rows("Count").Value);
