NAME
    x  a  1
